// The peer of the point store: one SQLite table with the point id as its primary key, statements
// prepared once, the connection kept open.
#pragma once

#include <sqlite3.h>

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/points/point.h"

namespace tarvex {

/// How SQLite protects a commit. In both synchronous=FULL: a commit that returned is on the disk.
enum class SqliteJournal { Rollback, WriteAhead };

class SqlitePoints {
 public:
  /// A new data base at `path`.
  SqlitePoints(const std::string& path, SqliteJournal journal);
  SqlitePoints(const SqlitePoints&) = delete;
  SqlitePoints& operator=(const SqlitePoints&) = delete;
  ~SqlitePoints();

  /// Inserts or replaces one point; durable on return, unless it is part of StoreAll.
  void Store(const Point& point);
  /// In one transaction.
  void StoreAll(std::span<const Point> points);
  bool Find(std::string_view id, Point& point);
  std::vector<Point> LoadAll();

 private:
  sqlite3_stmt* Prepare(const char* sql);
  void Run(const char* sql);
  void Check(int result) const;

  sqlite3* base_ = nullptr;
  sqlite3_stmt* store_ = nullptr;
  sqlite3_stmt* find_ = nullptr;
  sqlite3_stmt* load_ = nullptr;
};

}  // namespace tarvex

// The peer of an observation: three SQLite tables for what the three files of a job hold of a
// point, one transaction a point, statements prepared once, the connection kept open.
#pragma once

#include <sqlite3.h>

#include <span>
#include <string>
#include <string_view>

namespace tarvex {

/// What is kept of one observed point, as the job's files hold it.
struct ObservationBytes {
  std::string id;
  std::string coordinates;  ///< its record of the coordinate file
  std::string raw;          ///< what the raw file says of it
  std::string note;         ///< its block of the notes
};

/// In WAL mode with synchronous=FULL: a commit that returned is on the disk.
class SqliteObservations {
 public:
  /// A new data base at `path`.
  explicit SqliteObservations(const std::string& path);
  SqliteObservations(const SqliteObservations&) = delete;
  SqliteObservations& operator=(const SqliteObservations&) = delete;
  ~SqliteObservations();

  /// One transaction, durable on return.
  void Store(const ObservationBytes& observation);
  /// All in one transaction.
  void StoreAll(std::span<const ObservationBytes> observations);

 private:
  void Insert(const ObservationBytes& observation);
  void Step(sqlite3_stmt* statement);
  sqlite3_stmt* Prepare(const char* sql);
  void Run(const char* sql);
  void Check(int result) const;

  sqlite3* base_ = nullptr;
  sqlite3_stmt* begin_ = nullptr;
  sqlite3_stmt* point_ = nullptr;
  sqlite3_stmt* raw_ = nullptr;
  sqlite3_stmt* note_ = nullptr;
  sqlite3_stmt* commit_ = nullptr;
};

}  // namespace tarvex

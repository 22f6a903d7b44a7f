#include "bench/sqlite_points.h"

#include <cstdio>
#include <cstdlib>

namespace tarvex {
namespace {

std::string_view TextColumn(sqlite3_stmt* row, int column) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
  return {text, static_cast<std::size_t>(sqlite3_column_bytes(row, column))};
}

void BindText(sqlite3_stmt* statement, int at, std::string_view text) {
  (void)sqlite3_bind_text(statement, at, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
}

// Northing, easting, elevation and description are in the columns from `first` on.
void TakeColumns(sqlite3_stmt* row, int first, Point& point) {
  point.at = {.northing = sqlite3_column_double(row, first),
              .easting = sqlite3_column_double(row, first + 1),
              .elevation = sqlite3_column_double(row, first + 2)};
  point.description.Assign(TextColumn(row, first + 3));
}

}  // namespace

SqlitePoints::SqlitePoints(const std::string& path, SqliteJournal journal) {
  Check(sqlite3_open(path.c_str(), &base_));
  Run(journal == SqliteJournal::WriteAhead ? "PRAGMA journal_mode=WAL"
                                           : "PRAGMA journal_mode=DELETE");
  Run("PRAGMA synchronous=FULL");
  Run("PRAGMA cache_size=-262144");  // KiB: a million points stay in SQLite's own memory
  Run("CREATE TABLE point(id TEXT PRIMARY KEY, northing REAL, easting REAL, elevation REAL,"
      " description TEXT) WITHOUT ROWID");
  store_ = Prepare("INSERT OR REPLACE INTO point VALUES(?, ?, ?, ?, ?)");
  find_ = Prepare("SELECT northing, easting, elevation, description FROM point WHERE id = ?");
  load_ = Prepare("SELECT id, northing, easting, elevation, description FROM point ORDER BY id");
}

SqlitePoints::~SqlitePoints() {
  for (sqlite3_stmt* statement : {store_, find_, load_}) sqlite3_finalize(statement);
  sqlite3_close(base_);
}

void SqlitePoints::Store(const Point& point) {
  BindText(store_, 1, point.id.view());
  sqlite3_bind_double(store_, 2, point.at.northing);
  sqlite3_bind_double(store_, 3, point.at.easting);
  sqlite3_bind_double(store_, 4, point.at.elevation);
  BindText(store_, 5, point.description.view());
  if (sqlite3_step(store_) != SQLITE_DONE) Check(sqlite3_errcode(base_));
  Check(sqlite3_reset(store_));
}

void SqlitePoints::StoreAll(std::span<const Point> points) {
  Run("BEGIN");
  for (const Point& point : points) Store(point);
  Run("COMMIT");
}

bool SqlitePoints::Find(std::string_view id, Point& point) {
  BindText(find_, 1, id);
  const bool found = sqlite3_step(find_) == SQLITE_ROW;
  if (found) {
    TakeColumns(find_, 0, point);
    point.id.Assign(id);
  }
  Check(sqlite3_reset(find_));
  return found;
}

std::vector<Point> SqlitePoints::LoadAll() {
  std::vector<Point> points;
  while (sqlite3_step(load_) == SQLITE_ROW) {
    Point& point = points.emplace_back();
    point.id.Assign(TextColumn(load_, 0));
    TakeColumns(load_, 1, point);
  }
  Check(sqlite3_reset(load_));
  return points;
}

sqlite3_stmt* SqlitePoints::Prepare(const char* sql) {
  sqlite3_stmt* statement = nullptr;
  Check(sqlite3_prepare_v3(base_, sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr));
  return statement;
}

void SqlitePoints::Run(const char* sql) {
  Check(sqlite3_exec(base_, sql, nullptr, nullptr, nullptr));
}

void SqlitePoints::Check(int result) const {
  if (result == SQLITE_OK) return;
  std::fprintf(stderr, "SQLite: %s\n", sqlite3_errmsg(base_));
  std::exit(1);
}

}  // namespace tarvex

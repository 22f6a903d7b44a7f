#include "bench/sqlite_observations.h"

#include <cstdio>
#include <cstdlib>

namespace tarvex {
namespace {

void BindText(sqlite3_stmt* statement, int at, std::string_view text) {
  (void)sqlite3_bind_text(statement, at, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
}

}  // namespace

SqliteObservations::SqliteObservations(const std::string& path) {
  Check(sqlite3_open(path.c_str(), &base_));
  Run("PRAGMA journal_mode=WAL");
  Run("PRAGMA synchronous=FULL");
  Run("PRAGMA cache_size=-262144");  // KiB: everything stays in SQLite's own memory
  Run("CREATE TABLE point(id TEXT PRIMARY KEY, record BLOB) WITHOUT ROWID");
  Run("CREATE TABLE raw(number INTEGER PRIMARY KEY, records TEXT)");
  Run("CREATE TABLE note(id TEXT PRIMARY KEY, block TEXT) WITHOUT ROWID");
  begin_ = Prepare("BEGIN IMMEDIATE");
  point_ = Prepare("INSERT OR REPLACE INTO point VALUES(?, ?)");
  raw_ = Prepare("INSERT INTO raw(records) VALUES(?)");
  note_ = Prepare("INSERT OR REPLACE INTO note VALUES(?, ?)");
  commit_ = Prepare("COMMIT");
}

SqliteObservations::~SqliteObservations() {
  for (sqlite3_stmt* statement : {begin_, point_, raw_, note_, commit_}) {
    sqlite3_finalize(statement);
  }
  sqlite3_close(base_);
}

void SqliteObservations::Store(const ObservationBytes& observation) {
  Step(begin_);
  Insert(observation);
  Step(commit_);
}

void SqliteObservations::StoreAll(std::span<const ObservationBytes> observations) {
  Step(begin_);
  for (const ObservationBytes& observation : observations) Insert(observation);
  Step(commit_);
}

void SqliteObservations::Insert(const ObservationBytes& observation) {
  const std::string& record = observation.coordinates;
  BindText(point_, 1, observation.id);
  Check(
      sqlite3_bind_blob(point_, 2, record.data(), static_cast<int>(record.size()), SQLITE_STATIC));
  Step(point_);
  BindText(raw_, 1, observation.raw);
  Step(raw_);
  BindText(note_, 1, observation.id);
  BindText(note_, 2, observation.note);
  Step(note_);
}

void SqliteObservations::Step(sqlite3_stmt* statement) {
  if (sqlite3_step(statement) != SQLITE_DONE) Check(sqlite3_errcode(base_));
  Check(sqlite3_reset(statement));
}

sqlite3_stmt* SqliteObservations::Prepare(const char* sql) {
  sqlite3_stmt* statement = nullptr;
  Check(sqlite3_prepare_v3(base_, sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr));
  return statement;
}

void SqliteObservations::Run(const char* sql) {
  Check(sqlite3_exec(base_, sql, nullptr, nullptr, nullptr));
}

void SqliteObservations::Check(int result) const {
  if (result == SQLITE_OK) return;
  std::fprintf(stderr, "SQLite: %s\n", sqlite3_errmsg(base_));
  std::exit(1);
}

}  // namespace tarvex

#include "bench/bounds.h"

namespace tarvex {
namespace {

// Of all jobs whose names begin so, beside PROJ: arrays and single points, with AVX2 and without.
struct ProjBound {
  std::string_view jobs;
  Bound forth;
  Bound back;
};

constexpr ProjBound kBesideProj[] = {
    {"transverse Mercator", {0.60, 0.40}, {0.60, 0.40}},
    {"Lambert", {0.42, 0.25}, {0.25, 0.12}},
    {"double stereographic", {0.40, 0.30}, {0.15, 0.11}},
    {"polar stereographic", {0.42, 0.34}, {0.17, 0.13}},
    {"oblique stereographic", {0.42, 0.34}, {0.17, 0.13}},
    {"oblique Mercator", {0.60, 0.46}, {0.35, 0.27}},
    {"Cassini", {0.55, 0.40}, {0.30, 0.21}},
    {"double cylindrical", {0.50, 0.38}, {0.38, 0.29}},
    {"WGS84 to grid, seven parameters", {0.50, 0.25}, {0.50, 0.25}},
    {"calculator, seven parameters", {0.50, 0.25}, {0.50, 0.25}},
    {"shift grid", {0.20, 0.10}, {0.35, 0.20}},
};

struct JobBound {
  std::string_view job;
  std::string_view peer;
  Bound bound;
};

constexpr JobBound kOthers[] = {
    {"a million lines, UTM", "cs2cs", {0.25, 0.25}},
    {"a million lines, UTM, back", "cs2cs", {0.25, 0.25}},
    {"a million lines, seven parameters", "cs2cs", {0.25, 0.25}},
    {"a million lines, seven parameters, back", "cs2cs", {0.25, 0.25}},
    {"a megabyte of corrections", "str2str", {0.50, 0.29}},
    {"its processor time", "str2str", {1.00, 1.00}},
    {"a message passed on", "str2str", {0.10, 0.04}},
    {"connected to first byte", "str2str", {0.05, 0.01}},
    {"observation behind 1", "SQLite WAL", {1.00, 0.85}},
    {"observation behind 1000", "SQLite WAL", {1.00, 0.85}},
    {"observation behind 10000", "SQLite WAL", {1.00, 0.85}},
    {"observation behind 100000", "SQLite WAL", {1.00, 0.85}},
    {"bulk store of 1e6, ascending", "SQLite", {0.125, 0.125}},
    {"bulk store of 1e6, scattered", "SQLite", {0.125, 0.125}},
    {"load of 1e6", "SQLite", {0.20, 0.20}},
    {"lookup in open file of 1e6", "SQLite", {1.00, 1.00}},
    {"position sentence", "sscanf", {0.30, 0.20}},
};

}  // namespace

std::optional<Bound> BoundOf(std::string_view job, std::string_view peer) {
  for (const ProjBound& row : kBesideProj) {
    if (peer == "PROJ" && job.starts_with(row.jobs)) {
      return job.ends_with("back") ? row.back : row.forth;
    }
  }
  for (const JobBound& row : kOthers) {
    if (row.job == job && row.peer == peer) return row.bound;
  }
  return std::nullopt;
}

}  // namespace tarvex

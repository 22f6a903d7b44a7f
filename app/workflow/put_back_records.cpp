#include "app/workflow/put_back_records.h"

#include "core/raw_data/raw_fields.h"

namespace tarvex {

// What is measured begins with its date; what is put back follows the comment at once.
bool PutBackRecords::Take(std::string_view line) {
  if (const auto id = TakenBackPointId(line)) {
    takenBack_ = *id;
    return false;
  }
  if (takenBack_.empty()) return false;
  if (line.starts_with("--DT")) takenBack_ = {};
  const auto id = StoredPointId(line);
  if (!id) return false;
  const bool isPutBack = line.starts_with("GPS,") && *id == takenBack_;
  takenBack_ = {};
  return isPutBack;
}

}  // namespace tarvex

#include "core/coordinates/point_store.h"

#include "core/journal/file_rewrite.h"
#include "core/text/core_texts.h"
#include "core/text/string_table.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

// An id as it was given, and what the file looks it up by.
struct NamedKey {
  std::string text;
  PointKey key;
};

// Nothing for an id under which no point may be stored.
std::optional<NamedKey> StorableKey(const LayoutStore& store, const Job& job, std::string text) {
  const auto key = MakePointKey(text, job.store.alphanumeric);
  if (!key || !store.MayStore(*key)) return std::nullopt;
  return NamedKey{std::move(text), *key};
}

// Asks the person under which id to store; why nothing is stored, if that is the answer.
std::optional<StorePointResult> SettleId(Job& job, LayoutStore& store, NamedKey& id) {
  if (!store.MayExist(id.key)) return std::nullopt;
  const ExistingPointAnswer answer = job.host.AskExistingPoint(id.text, store.Exists(id.key));
  std::optional<NamedKey> other = id;
  switch (answer.choice) {
    case ExistingPointAnswer::Choice::Cancel:
      return StorePointResult::Cancelled;
    case ExistingPointAnswer::Choice::Failed:
      return StorePointResult::DialogFailed;
    case ExistingPointAnswer::Choice::UseNextFreeId: {
      const auto free = store.NextFree(job.ids);
      if (!free) return StorePointResult::DialogFailed;
      other = StorableKey(store, job, *free);
      break;
    }
    case ExistingPointAnswer::Choice::UseOtherId:
      other = StorableKey(store, job, answer.otherId);
      break;
    case ExistingPointAnswer::Choice::Overwrite:
      break;
  }
  if (!other) return StorePointResult::Nothing;
  id = std::move(*other);
  return std::nullopt;
}

void TellFailure(Job& job, int message, std::string_view id, const FileStatus& status) {
  job.host.ShowMessage(Strings().Text(MessageOf(message, status), {id, job.path, status.Text()}));
}

}  // namespace

ReadPointResult ReadPoint(Job& job, std::string_view id, CoordinateFile* stream, Point& point) {
  if (stream == nullptr) return ReadPointResult::NoStream;
  const auto key = MakePointKey(id, job.store.alphanumeric);
  return key ? stream->store().Read(*key, point) : ReadPointResult::NotFound;
}

StorePointResult StorePoint(Job& job, const GridPoint& at, std::string_view description,
                            bool checkExisting, CoordinateFile* stream) {
  if (stream == nullptr) return StorePointResult::NoStream;
  LayoutStore& store = stream->store();
  auto id = StorableKey(store, job, job.ids.current);
  if (!id || !IsFinite(at)) return StorePointResult::Nothing;
  if (checkExisting) {
    if (const auto refused = SettleId(job, store, *id)) return *refused;
  }
  const Point point{.at = at, .description = Description(OneLine(description)), .id = id->key.id};
  const FileStatus status = store.Store(id->key, point);
  if (!status.ok()) TellFailure(job, kTextNotStored, id->text, status);
  if (!status.done()) return StorePointResult::Nothing;
  job.ids.current = id->text;
  job.store.lastStoredPoint = point;
  return status.ok() ? StorePointResult::Stored : StorePointResult::StoredNotDurable;
}

DeletePointResult DeletePoint(Job& job, std::string_view id, CoordinateFile* stream) {
  if (stream == nullptr) return DeletePointResult::NoStream;
  const auto key = MakePointKey(id, job.store.alphanumeric);
  Point existing;
  if (!key || stream->store().Read(*key, existing) != ReadPointResult::Found) {
    return DeletePointResult::NotFound;
  }
  const FileStatus status = stream->store().Delete(*key);
  if (status.ok()) return DeletePointResult::Deleted;
  TellFailure(job, kTextNotDeleted, id, status);
  return status.done() ? DeletePointResult::DeletedNotDurable : DeletePointResult::Failed;
}

std::optional<std::string> NextFreePointId(Job& job, CoordinateFile& stream) {
  return stream.store().NextFree(job.ids);
}

}  // namespace tarvex

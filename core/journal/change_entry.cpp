#include "core/journal/change_entry.h"

#include <algorithm>
#include <iterator>

#include "core/codec/byte_codec.h"

namespace tarvex {
namespace {

// A check sum that notices an entry cut short or half written; eight bytes a step.
std::uint64_t CheckSum(std::string_view bytes) {
  std::uint64_t sum = bytes.size();
  const auto mix = [&sum](std::uint64_t word) {
    sum = (sum ^ word) * 0x9E3779B97F4A7C15U;
    sum ^= sum >> 32U;
  };
  std::size_t at = 0;
  for (; at + 8 <= bytes.size(); at += 8) mix(NumberAt<std::uint64_t>(bytes.data() + at));
  for (; at < bytes.size(); ++at) mix(static_cast<unsigned char>(bytes[at]));
  return sum;
}

// The numbers before the payload of an entry, behind the signature.
struct EntryHead {
  std::uint64_t series = 0;
  std::uint64_t number = 0;
  std::uint64_t payloadSize = 0;
};

template <typename Walker, typename Head>
constexpr void WalkEntryHead(Walker& walker, Head& head) {
  walker.Number(head.series);
  walker.Number(head.number);
  walker.Number(head.payloadSize);
}

static_assert(ByteCount([](auto& walker) {
                const EntryHead head;
                WalkEntryHead(walker, head);
              }) == kChangeHeaderSize - kChangeMagic.size());

// Which file a change is of, and whether it is replaced.
struct FileHead {
  std::uint64_t file = 0;
  std::uint64_t replaced = 0;
};

template <typename Walker, typename Head>
constexpr void WalkFileHead(Walker& walker, Head& head) {
  walker.Number(head.file);
  walker.Number(head.replaced);
}

// Sizes and count of writes, the same in both kinds of journal.
struct ChangeHead {
  std::uint64_t oldSize = 0;
  std::uint64_t newSize = 0;
  std::uint64_t writes = 0;
};

template <typename Walker, typename Head>
constexpr void WalkChangeHead(Walker& walker, Head& head) {
  walker.Number(head.oldSize);
  walker.Number(head.newSize);
  walker.Number(head.writes);
}

struct WriteHead {
  std::uint64_t offset = 0;
  std::uint64_t repeat = 0;
  std::uint64_t length = 0;
};

template <typename Walker, typename Head>
constexpr void WalkWriteHead(Walker& walker, Head& head) {
  walker.Number(head.offset);
  walker.Number(head.repeat);
  walker.Number(head.length);
}

std::optional<FileWrite> DecodeWrite(ByteReader& reader) {
  WriteHead head;
  WalkWriteHead(reader, head);
  const std::string_view bytes = reader.Bytes(head.length);
  if (!reader.ok()) return std::nullopt;
  return FileWrite{.offset = head.offset, .bytes = std::string(bytes), .repeat = head.repeat};
}

// A write lies within the file as it was or is to be.
bool Fits(const FileWrite& write, std::uint64_t size) {
  if (write.offset > size) return false;
  return write.bytes.empty() || write.repeat <= (size - write.offset) / write.bytes.size();
}

std::optional<FileChange> DecodeFileChange(ByteReader& reader) {
  ChangeHead head;
  WalkChangeHead(reader, head);
  if (!reader.ok()) return std::nullopt;
  FileChange change{.oldSize = head.oldSize, .newSize = head.newSize};
  for (std::uint64_t i = 0; i < head.writes; ++i) {
    auto write = DecodeWrite(reader);
    if (!write || !Fits(*write, std::max(head.oldSize, head.newSize))) return std::nullopt;
    change.writes.push_back(std::move(*write));
  }
  return change;
}

std::optional<JobChange> DecodeChange(std::string_view payload) {
  ByteReader reader(payload);
  std::uint64_t count = 0;
  reader.Number(count);
  if (!reader.ok()) return std::nullopt;
  JobChange change;
  for (std::uint64_t i = 0; i < count; ++i) {
    FileHead head;
    WalkFileHead(reader, head);
    if (!reader.ok() || head.file >= std::size(kJobFiles)) return std::nullopt;
    auto one = DecodeFileChange(reader);
    if (!one) return std::nullopt;
    one->file = kJobFiles[head.file];
    one->replaced = head.replaced != 0;
    change.push_back(std::move(*one));
  }
  return change;
}

void AppendFileChange(std::string& bytes, const FileChange& change) {
  ByteWriter writer(bytes);
  const FileHead file{.file = static_cast<std::uint64_t>(change.file),
                      .replaced = change.replaced ? 1U : 0U};
  WalkFileHead(writer, file);
  const ChangeHead head{
      .oldSize = change.oldSize, .newSize = change.newSize, .writes = change.writes.size()};
  WalkChangeHead(writer, head);
  for (const FileWrite& write : change.writes) {
    const WriteHead place{
        .offset = write.offset, .repeat = write.repeat, .length = write.bytes.size()};
    WalkWriteHead(writer, place);
    bytes += write.bytes;
  }
}

}  // namespace

std::string EncodeEntry(const ChangeEntry& entry) {
  std::string payload;
  AppendNumber<std::uint64_t>(payload, entry.change.size());
  for (const FileChange& one : entry.change) AppendFileChange(payload, one);
  std::string bytes(kChangeMagic);
  const EntryHead head{
      .series = entry.series, .number = entry.number, .payloadSize = payload.size()};
  ByteWriter writer(bytes);
  WalkEntryHead(writer, head);
  bytes += payload;
  AppendNumber(bytes, CheckSum(bytes));
  return bytes;
}

std::optional<ChangeEntry> TakeEntry(std::string_view& bytes) {
  if (!bytes.starts_with(kChangeMagic)) return std::nullopt;
  ByteReader reader(bytes.substr(kChangeMagic.size()));
  EntryHead head;
  WalkEntryHead(reader, head);
  const std::string_view payload = reader.Bytes(head.payloadSize);
  std::uint64_t sum = 0;
  reader.Number(sum);
  if (!reader.ok() || CheckSum(bytes.substr(0, kChangeHeaderSize + payload.size())) != sum) {
    return std::nullopt;
  }
  auto change = DecodeChange(payload);
  if (!change) return std::nullopt;
  bytes = reader.rest();
  return ChangeEntry{.series = head.series, .number = head.number, .change = std::move(*change)};
}

std::optional<JobChange> DecodeOldJournal(std::string_view bytes) {
  if (bytes.size() < kOldChangeMagic.size() + 8 || !bytes.starts_with(kOldChangeMagic)) {
    return std::nullopt;
  }
  const std::string_view checked = bytes.substr(0, bytes.size() - 8);
  if (CheckSum(checked) != NumberAt<std::uint64_t>(bytes.data() + checked.size())) {
    return std::nullopt;
  }
  ByteReader reader(checked.substr(kOldChangeMagic.size()));
  auto change = DecodeFileChange(reader);
  if (!change) return std::nullopt;
  return JobChange{std::move(*change)};
}

}  // namespace tarvex

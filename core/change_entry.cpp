#include "core/change_entry.h"

#include <algorithm>
#include <array>

namespace tarvex {
namespace {

void AppendNumber(std::string& bytes, std::uint64_t value) {
  char number[8];
  for (char& byte : number) {
    byte = static_cast<char>(value & 0xFFU);
    value >>= 8U;
  }
  bytes.append(number, sizeof number);
}

std::uint64_t NumberAt(const char* bytes) {
  std::uint64_t value = 0;
  for (int i = 7; i >= 0; --i) value = value << 8U | static_cast<unsigned char>(bytes[i]);
  return value;
}

// A check sum that notices an entry cut short or half written; eight bytes a step.
std::uint64_t CheckSum(std::string_view bytes) {
  std::uint64_t sum = bytes.size();
  const auto mix = [&sum](std::uint64_t word) {
    sum = (sum ^ word) * 0x9E3779B97F4A7C15U;
    sum ^= sum >> 32U;
  };
  std::size_t at = 0;
  for (; at + 8 <= bytes.size(); at += 8) mix(NumberAt(bytes.data() + at));
  for (; at < bytes.size(); ++at) mix(static_cast<unsigned char>(bytes[at]));
  return sum;
}

// Takes numbers and bytes off the front of text whose check sum is right.
class EntryReader {
 public:
  explicit EntryReader(std::string_view bytes) : rest_(bytes) {}

  std::optional<std::uint64_t> Number() {
    if (rest_.size() < 8) return std::nullopt;
    const std::uint64_t value = NumberAt(rest_.data());
    rest_.remove_prefix(8);
    return value;
  }

  std::optional<std::string_view> Bytes(std::uint64_t count) {
    if (count > rest_.size()) return std::nullopt;
    const std::string_view taken = rest_.substr(0, static_cast<std::size_t>(count));
    rest_.remove_prefix(taken.size());
    return taken;
  }

 private:
  std::string_view rest_;
};

std::optional<FileWrite> DecodeWrite(EntryReader& reader) {
  const auto offset = reader.Number();
  const auto repeat = reader.Number();
  const auto length = reader.Number();
  if (!offset || !repeat || !length) return std::nullopt;
  const auto bytes = reader.Bytes(*length);
  if (!bytes) return std::nullopt;
  return FileWrite{.offset = *offset, .bytes = std::string(*bytes), .repeat = *repeat};
}

// A write lies within the file as it was or is to be.
bool Fits(const FileWrite& write, std::uint64_t size) {
  if (write.offset > size) return false;
  return write.bytes.empty() || write.repeat <= (size - write.offset) / write.bytes.size();
}

// Sizes and writes, the same in both kinds of journal.
std::optional<FileChange> DecodeFileChange(EntryReader& reader) {
  const auto oldSize = reader.Number();
  const auto newSize = reader.Number();
  const auto count = reader.Number();
  if (!oldSize || !newSize || !count) return std::nullopt;
  FileChange change{.oldSize = *oldSize, .newSize = *newSize};
  for (std::uint64_t i = 0; i < *count; ++i) {
    auto write = DecodeWrite(reader);
    if (!write || !Fits(*write, std::max(*oldSize, *newSize))) return std::nullopt;
    change.writes.push_back(std::move(*write));
  }
  return change;
}

std::optional<JobChange> DecodeChange(std::string_view payload) {
  EntryReader reader(payload);
  const auto count = reader.Number();
  if (!count) return std::nullopt;
  JobChange change;
  for (std::uint64_t i = 0; i < *count; ++i) {
    const auto file = reader.Number();
    const auto replaced = reader.Number();
    if (!file || *file >= std::size(kJobFiles) || !replaced) return std::nullopt;
    auto one = DecodeFileChange(reader);
    if (!one) return std::nullopt;
    one->file = kJobFiles[*file];
    one->replaced = *replaced != 0;
    change.push_back(std::move(*one));
  }
  return change;
}

void AppendChange(std::string& bytes, const JobChange& change) {
  AppendNumber(bytes, change.size());
  for (const FileChange& one : change) {
    AppendNumber(bytes, static_cast<std::uint64_t>(one.file));
    AppendNumber(bytes, one.replaced ? 1 : 0);
    AppendNumber(bytes, one.oldSize);
    AppendNumber(bytes, one.newSize);
    AppendNumber(bytes, one.writes.size());
    for (const FileWrite& write : one.writes) {
      AppendNumber(bytes, write.offset);
      AppendNumber(bytes, write.repeat);
      AppendNumber(bytes, write.bytes.size());
      bytes += write.bytes;
    }
  }
}

}  // namespace

std::string EncodeEntry(const ChangeEntry& entry) {
  std::string payload;
  AppendChange(payload, entry.change);
  std::string bytes(kChangeMagic);
  AppendNumber(bytes, entry.series);
  AppendNumber(bytes, entry.number);
  AppendNumber(bytes, payload.size());
  bytes += payload;
  AppendNumber(bytes, CheckSum(bytes));
  return bytes;
}

std::optional<ChangeEntry> TakeEntry(std::string_view& bytes) {
  if (bytes.size() < kChangeHeaderSize + 8 || !bytes.starts_with(kChangeMagic)) return std::nullopt;
  ChangeEntry entry{
      .series = NumberAt(bytes.data() + 8), .number = NumberAt(bytes.data() + 16), .change = {}};
  const std::uint64_t length = NumberAt(bytes.data() + 24);
  if (length > bytes.size() - kChangeHeaderSize - 8) return std::nullopt;
  const std::size_t checked = kChangeHeaderSize + static_cast<std::size_t>(length);
  if (CheckSum(bytes.substr(0, checked)) != NumberAt(bytes.data() + checked)) return std::nullopt;
  auto change = DecodeChange(bytes.substr(kChangeHeaderSize, static_cast<std::size_t>(length)));
  if (!change) return std::nullopt;
  entry.change = std::move(*change);
  bytes.remove_prefix(checked + 8);
  return entry;
}

std::optional<JobChange> DecodeOldJournal(std::string_view bytes) {
  if (bytes.size() < kOldChangeMagic.size() + 8 || !bytes.starts_with(kOldChangeMagic)) {
    return std::nullopt;
  }
  const std::string_view checked = bytes.substr(0, bytes.size() - 8);
  if (CheckSum(checked) != NumberAt(bytes.data() + checked.size())) return std::nullopt;
  EntryReader reader(checked.substr(kOldChangeMagic.size()));
  auto change = DecodeFileChange(reader);
  if (!change) return std::nullopt;
  return JobChange{std::move(*change)};
}

}  // namespace tarvex

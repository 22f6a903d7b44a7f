// Any bytes as the journal of a job's changes: whole entries decode, and encode to what decodes to
// the same; a job whose journal holds them opens or is refused. Almost no random entry has the
// right check sum, so most inputs are given one. The first byte of the input says how.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "core/coordinates/coordinate_file.h"
#include "core/journal/change_entry.h"
#include "tests/support/test_host.h"

namespace tarvex {
namespace {

constexpr std::uint64_t kLargestFile = 1 << 20;  // more is made on a real disk only

void Require(bool condition) {
  if (!condition) std::abort();
}

std::string Number(std::uint64_t value) {
  std::string bytes;
  for (int i = 0; i < 8; ++i) bytes += static_cast<char>(value >> (8 * i) & 0xFFU);
  return bytes;
}

// As docs/formats/redo.md says it.
std::string WithCheckSum(std::string bytes) {
  std::uint64_t sum = bytes.size();
  const auto mix = [&sum](std::uint64_t word) {
    sum = (sum ^ word) * 0x9E3779B97F4A7C15U;
    sum ^= sum >> 32U;
  };
  std::size_t at = 0;
  for (; at + 8 <= bytes.size(); at += 8) {
    std::uint64_t word = 0;
    for (std::size_t i = 8; i-- > 0;) word = word << 8U | static_cast<unsigned char>(bytes[at + i]);
    mix(word);
  }
  for (; at < bytes.size(); ++at) mix(static_cast<unsigned char>(bytes[at]));
  return bytes + Number(sum);
}

std::string SealedEntry(std::uint64_t number, std::string_view payload) {
  return WithCheckSum(std::string(kChangeMagic) + Number(1) + Number(number) +
                      Number(payload.size()) + std::string(payload));
}

// The journal that the input gives: itself, an old one, or one or two entries.
std::string JournalOf(std::string_view input) {
  if (input.empty()) return {};
  const char how = input[0];
  input.remove_prefix(1);
  switch (how) {
    case '1':
      return WithCheckSum(std::string(kOldChangeMagic) + std::string(input));
    case '2':
      return SealedEntry(0, input);
    case '3':
      return SealedEntry(0, input) + SealedEntry(1, input);
    default:
      return std::string(input);
  }
}

std::string Encoded(const JobChange& change) {
  return EncodeEntry({.series = 2, .number = 3, .change = change});
}

bool HasLargeFile(const JobChange& change) {
  for (const FileChange& one : change) {
    if (one.oldSize > kLargestFile || one.newSize > kLargestFile) return true;
  }
  return false;
}

// Writes lie within the file as it was or is to be.
void RequireSound(const JobChange& change) {
  const std::string bytes = Encoded(change);
  std::string_view rest = bytes;
  const auto again = TakeEntry(rest);
  Require(again && rest.empty() && again->series == 2 && again->number == 3);
  Require(Encoded(again->change) == bytes);
  for (const FileChange& one : change) {
    for (const FileWrite& write : one.writes) {
      const std::uint64_t end = std::max(one.oldSize, one.newSize);
      Require(write.offset <= end);
      Require(write.bytes.empty() || write.repeat <= (end - write.offset) / write.bytes.size());
    }
  }
}

void OpenJobWith(const std::string& journal) {
  TestHost host;
  Job job = MakeJob(host, true);
  Require(OpenCoordinateFile(job, true) != nullptr);
  host.memory.Put("/jobs/site.rw5", "JB,NMsite\nMO,AD0\n");
  host.memory.Put("/jobs/site.crd.redo", journal);
  (void)OpenCoordinateFile(job);
  Require(OpenCoordinateFile(job) != nullptr || !host.messages.empty());
}

void Run(std::string_view input) {
  const std::string journal = JournalOf(input);
  bool large = false;
  std::string_view rest = journal;
  while (const auto entry = TakeEntry(rest)) {
    RequireSound(entry->change);
    large = large || HasLargeFile(entry->change);
  }
  if (const auto change = DecodeOldJournal(journal)) {
    RequireSound(*change);
    large = large || HasLargeFile(*change);
  }
  if (!large) OpenJobWith(journal);
}

}  // namespace
}  // namespace tarvex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tarvex::Run({reinterpret_cast<const char*>(data), size});
  return 0;
}

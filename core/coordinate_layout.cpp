#include "core/coordinate_layout.h"

#include <bit>
#include <cmath>
#include <cstring>

#include "core/number_text.h"

namespace tarvex {
namespace {

constexpr std::size_t kDescriptionSize = kDescriptionLength + 1;
constexpr std::size_t kDescriptionOffset = 24;

void AppendZeros(std::string& bytes, std::size_t count) {
  bytes.append(count, '\0');
}

void AppendDouble(std::string& bytes, double value) {
  char field[8];
  auto bits = std::bit_cast<std::uint64_t>(value);
  if constexpr (std::endian::native == std::endian::little) {
    std::memcpy(field, &bits, sizeof field);
  } else {
    for (int i = 0; i < 8; ++i, bits >>= 8U) field[i] = static_cast<char>(bits & 0xFFU);
  }
  bytes.append(field, sizeof field);
}

double DecodeDouble(const char* bytes) {
  std::uint64_t bits = 0;
  if constexpr (std::endian::native == std::endian::little) {
    std::memcpy(&bits, bytes, sizeof bits);
  } else {
    for (int i = 7; i >= 0; --i) bits = bits << 8U | static_cast<unsigned char>(bytes[i]);
  }
  return std::bit_cast<double>(bits);
}

void AppendText(std::string& bytes, std::string_view text, std::size_t fieldSize) {
  bytes += text;
  AppendZeros(bytes, fieldSize - text.size());
}

void AppendCoordinates(std::string& bytes, const GridPoint& at, const Description& description) {
  AppendDouble(bytes, at.northing);
  AppendDouble(bytes, at.easting);
  AppendDouble(bytes, at.elevation);
  AppendText(bytes, description.view(), kDescriptionSize);
}

void DecodeCoordinates(const char* bytes, Point& point) {
  point.at = {.northing = DecodeDouble(bytes),
              .easting = DecodeDouble(bytes + 8),
              .elevation = DecodeDouble(bytes + 16)};
  point.description.TakeField(bytes + kDescriptionOffset);
}

}  // namespace

namespace numeric_layout {
namespace {

constexpr double kLargestNumber = 1e9;

// 5 December 2008 is 2008.1205.
double PackedDate(const LocalTime& date) {
  std::string text;
  AppendInteger(text, date.year, 4);
  text += '.';
  AppendInteger(text, date.month, 2);
  AppendInteger(text, date.day, 2);
  return LeadingDouble(text);
}

}  // namespace

std::string EncodeHighestNumber(long long highestNumber) {
  std::string bytes;
  AppendDouble(bytes, static_cast<double>(highestNumber));
  return bytes;
}

std::string EncodeHeader(long long highestNumber, const LocalTime& created) {
  std::string bytes = EncodeHighestNumber(highestNumber);
  AppendDouble(bytes, 0.0);
  AppendDouble(bytes, PackedDate(created));
  AppendZeros(bytes, kRecordSize - bytes.size());
  return bytes;
}

long long DecodeHighestNumber(std::string_view header) {
  const double number = DecodeDouble(header.data());
  if (!(number >= 0.0 && number <= kLargestNumber) || number != std::floor(number)) return -1;
  return static_cast<long long>(number);
}

void AppendRecord(std::string& bytes, const GridPoint& at, const Description& description) {
  AppendCoordinates(bytes, at, description);
}

void DecodeRecord(const char* bytes, Point& point) {
  DecodeCoordinates(bytes, point);
}

std::string FillerRecord() {
  std::string bytes;
  AppendRecord(bytes, {}, Description(" "));
  return bytes;
}

}  // namespace numeric_layout

namespace alphanumeric_layout {
namespace {

constexpr std::size_t kDateOffset = 8;
constexpr std::size_t kSignatureOffset = 72;
constexpr std::size_t kSignatureSize = 16;
constexpr std::string_view kOlderSignature = "New CRD Format";
constexpr std::string_view kSortedSignature = "New CRD Format2";

}  // namespace

std::string EncodeHeader(const LocalTime& created) {
  std::string bytes;
  AppendZeros(bytes, kDateOffset);
  AppendInteger(bytes, created.month, 2);
  bytes += '-';
  AppendInteger(bytes, created.day, 2);
  bytes += '-';
  AppendInteger(bytes, created.year, 4);
  AppendZeros(bytes, kSignatureOffset - bytes.size());
  AppendText(bytes, kSortedSignature, kSignatureSize);
  AppendZeros(bytes, kHeaderSize - bytes.size());
  return bytes;
}

Signature DecodeSignature(std::string_view header) {
  if (header.size() < kHeaderSize) return Signature::None;
  const std::string_view text = header.substr(kSignatureOffset);
  if (!text.starts_with(kOlderSignature)) return Signature::None;
  return text[kOlderSignature.size()] == '2' ? Signature::Sorted : Signature::Older;
}

void MarkSorted(std::string& header) {
  std::string signature(kSortedSignature);
  AppendZeros(signature, kSignatureSize - signature.size());
  header.replace(kSignatureOffset, kSignatureSize, signature);
}

void AppendRecord(std::string& bytes, const Point& point) {
  AppendCoordinates(bytes, point.at, point.description);
  AppendText(bytes, point.id.view(), kIdSize);
}

void DecodeRecord(const char* bytes, Point& point) {
  DecodeCoordinates(bytes, point);
  point.id.TakeField(bytes + kIdOffset);
}

PointId DecodeId(const char* record) {
  PointId id;
  id.TakeField(record + kIdOffset);
  return id;
}

}  // namespace alphanumeric_layout
}  // namespace tarvex

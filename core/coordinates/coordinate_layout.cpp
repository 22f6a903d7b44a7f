#include "core/coordinates/coordinate_layout.h"

#include <cmath>

#include "core/codec/byte_codec.h"
#include "core/text/date_text.h"
#include "core/text/number_text.h"

namespace tarvex {
namespace {

// What a record of both layouts begins with.
template <typename Walker, typename PointRecord>
constexpr void WalkCoordinates(Walker& walker, PointRecord& point) {
  walker.Number(point.at.northing);
  walker.Number(point.at.easting);
  walker.Number(point.at.elevation);
  walker.Text(point.description);
}

}  // namespace

namespace numeric_layout {
namespace {

constexpr double kLargestNumber = 1e9;

struct Header {
  double highestNumber = 0.0;
  double created = 0.0;  // YYYY.MMDD
};

template <typename Walker, typename HeaderRecord>
constexpr void WalkHeader(Walker& walker, HeaderRecord& header) {
  walker.Number(header.highestNumber);
  walker.Zeros(8);
  walker.Number(header.created);
  walker.Zeros(32);
}

static_assert(ByteCount([](auto& walker) {
                const Header header;
                WalkHeader(walker, header);
              }) == kRecordSize);
static_assert(ByteCount([](auto& walker) {
                const Point point;
                WalkCoordinates(walker, point);
              }) == kRecordSize);

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
  AppendNumber(bytes, static_cast<double>(highestNumber));
  return bytes;
}

std::string EncodeHeader(long long highestNumber, const LocalTime& created) {
  const Header header{.highestNumber = static_cast<double>(highestNumber),
                      .created = PackedDate(created)};
  std::string bytes;
  ByteWriter writer(bytes);
  WalkHeader(writer, header);
  return bytes;
}

long long DecodeHighestNumber(std::string_view header) {
  const auto number = NumberAt<double>(header.data());
  if (!(number >= 0.0 && number <= kLargestNumber) || number != std::floor(number)) return -1;
  return static_cast<long long>(number);
}

void AppendRecord(std::string& bytes, const Point& point) {
  ByteWriter writer(bytes);
  WalkCoordinates(writer, point);
}

void DecodeRecord(const char* bytes, Point& point) {
  ByteReader reader({bytes, kRecordSize});
  WalkCoordinates(reader, point);
}

std::string FillerRecord() {
  std::string bytes;
  AppendRecord(bytes, {.at = {}, .description = Description(" "), .id = {}});
  return bytes;
}

}  // namespace numeric_layout

namespace alphanumeric_layout {
namespace {

constexpr std::size_t kSignatureOffset = 72;
constexpr std::size_t kSignatureSize = 16;
constexpr std::string_view kOlderSignature = "New CRD Format";
constexpr std::string_view kSortedSignature = "New CRD Format2";

struct Header {
  FixedText<31> created = {};  // MM-DD-YYYY
  FixedText<kSignatureSize - 1> signature = {};
};

template <typename Walker, typename HeaderRecord>
constexpr void WalkHeader(Walker& walker, HeaderRecord& header) {
  walker.Zeros(8);
  walker.Text(header.created);
  walker.Zeros(32);
  walker.Text(header.signature);
  walker.Zeros(16);
}

static_assert(ByteCount([](auto& walker) {
                const Header header;
                WalkHeader(walker, header);
              }) == kHeaderSize);
static_assert(kSignatureOffset + kSignatureSize + 16 == kHeaderSize);

template <typename Walker, typename PointRecord>
constexpr void WalkRecord(Walker& walker, PointRecord& point) {
  WalkCoordinates(walker, point);
  walker.Text(point.id);
}

static_assert(ByteCount([](auto& walker) {
                const Point point;
                WalkRecord(walker, point);
              }) == kRecordSize);
static_assert(kIdOffset == numeric_layout::kRecordSize && kIdOffset + kIdSize == kRecordSize);

}  // namespace

std::string EncodeHeader(const LocalTime& created) {
  const Header header{.created = FixedText<31>(DateText(created)),
                      .signature = FixedText<kSignatureSize - 1>(kSortedSignature)};
  std::string bytes;
  ByteWriter writer(bytes);
  WalkHeader(writer, header);
  return bytes;
}

Signature DecodeSignature(std::string_view bytes) {
  Header header;
  ByteReader reader(bytes);
  WalkHeader(reader, header);
  const std::string_view signature = header.signature.view();
  if (!reader.ok() || !signature.starts_with(kOlderSignature)) return Signature::None;
  return signature.starts_with(kSortedSignature) ? Signature::Sorted : Signature::Older;
}

void MarkSorted(std::string& header) {
  std::string signature;
  ByteWriter(signature).Text(FixedText<kSignatureSize - 1>(kSortedSignature));
  header.replace(kSignatureOffset, kSignatureSize, signature);
}

void AppendRecord(std::string& bytes, const Point& point) {
  ByteWriter writer(bytes);
  WalkRecord(writer, point);
}

void DecodeRecord(const char* bytes, Point& point) {
  ByteReader reader({bytes, kRecordSize});
  WalkRecord(reader, point);
}

PointId DecodeId(const char* record) {
  PointId id;
  id.TakeField(record + kIdOffset);
  return id;
}

}  // namespace alphanumeric_layout
}  // namespace tarvex

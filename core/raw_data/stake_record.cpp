#include "core/raw_data/stake_record.h"

#include <array>
#include <cmath>

#include "core/raw_data/raw_fields.h"
#include "core/raw_data/record_text.h"

namespace tarvex {
namespace {

constexpr int kDecimals = 4;
constexpr std::string_view kWithin = "within tolerance";
constexpr std::string_view kNotWithin = "not within tolerance";
constexpr std::array<std::string_view, 3> kParts = {"--Stake design", "--Stake found",
                                                    "--Stake difference"};

// What is written as nothing has no sign.
double WithoutSignOfZero(double value) {
  return std::fabs(value) < 0.5e-4 ? 0.0 : value;
}

// "\n--Stake design:N 1.0000,E 2.0000,EL3.0000": the first field follows a colon.
RecordText Part(int part, const GridPoint& at, bool hasElevation) {
  RecordText record(std::string(kParts[static_cast<std::size_t>(part)]) + ":N " +
                    FixedNumber(at.northing, kDecimals));
  record.Number("E ", at.easting, kDecimals);
  if (hasElevation) record.Number("EL", at.elevation, kDecimals);
  return record;
}

bool TakeNumber(std::string_view record, std::string_view tag, double& value) {
  const auto field = RawField(record, tag);
  const auto number = field ? ParseNumber(*field) : std::nullopt;
  if (number) value = *number;
  return number.has_value();
}

std::string_view DescriptionOf(std::string_view record) {
  const std::size_t at = record.find(",--");
  return at == std::string_view::npos ? std::string_view() : record.substr(at + 3);
}

}  // namespace

StakeRecord MakeStakeRecord(std::string design, const GridPoint& designAt, bool designHasElevation,
                            const GridPoint& foundAt) {
  StakeRecord stake;
  stake.design = std::move(design);
  stake.designAt = designAt;
  stake.designHasElevation = designHasElevation;
  stake.foundAt = foundAt;
  stake.difference = {foundAt.northing - designAt.northing, foundAt.easting - designAt.easting,
                      designHasElevation ? foundAt.elevation - designAt.elevation : 0.0};
  stake.distance = std::hypot(stake.difference.northing, stake.difference.easting);
  return stake;
}

std::string StakeComments(const StakeRecord& stake) {
  const GridPoint difference = {WithoutSignOfZero(stake.difference.northing),
                                WithoutSignOfZero(stake.difference.easting),
                                WithoutSignOfZero(stake.difference.elevation)};
  return Part(0, stake.designAt, stake.designHasElevation).Description(stake.design).str() +
         Part(1, stake.foundAt, true).Description(stake.found).str() +
         Part(2, difference, stake.designHasElevation)
             .Number("HD", stake.distance, kDecimals)
             .Number("HT", stake.horizontalTolerance, kDecimals)
             .Number("VT", stake.verticalTolerance, kDecimals)
             .Description(stake.withinTolerance ? kWithin : kNotWithin)
             .str();
}

StakeLine StakeReader::Take(std::string_view line) {
  for (int part = 0; part < static_cast<int>(kParts.size()); ++part) {
    const std::string_view name = kParts[static_cast<std::size_t>(part)];
    if (!line.starts_with(name) || !line.substr(name.size()).starts_with(':')) continue;
    if (part == 0) stake_ = {};
    const bool whole = (part == 0 || part == next_) && TakePart(line.substr(name.size() + 1), part);
    next_ = whole && part < 2 ? part + 1 : 0;
    if (!whole) return StakeLine::Broken;
    return part == 2 ? StakeLine::Complete : StakeLine::Part;
  }
  const bool cutShort = next_ != 0;
  next_ = 0;
  return cutShort ? StakeLine::Broken : StakeLine::None;
}

bool StakeReader::TakePart(std::string_view text, int part) {
  GridPoint& at = part == 0 ? stake_.designAt : part == 1 ? stake_.foundAt : stake_.difference;
  if (!TakeNumber(text, "N ", at.northing) || !TakeNumber(text, "E ", at.easting)) return false;
  const bool hasElevation = RawField(text, "EL").has_value();
  if (hasElevation && !TakeNumber(text, "EL", at.elevation)) return false;
  const std::string_view description = DescriptionOf(text);
  switch (part) {
    case 0:
      stake_.design = description;
      stake_.designHasElevation = hasElevation;
      return !description.empty();
    case 1:
      stake_.found = description;
      return hasElevation;
    default:
      stake_.withinTolerance = description == kWithin;
      return hasElevation == stake_.designHasElevation &&
             (description == kWithin || description == kNotWithin) &&
             TakeNumber(text, "HD", stake_.distance) &&
             TakeNumber(text, "HT", stake_.horizontalTolerance) &&
             TakeNumber(text, "VT", stake_.verticalTolerance);
  }
}

}  // namespace tarvex

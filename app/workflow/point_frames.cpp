#include "app/workflow/point_frames.h"

#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "app/workflow/put_back_records.h"
#include "core/raw_data/raw_fields.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr std::string_view kLocalization = "--Localization: ";
constexpr std::string_view kControl = "--Localization control changed";
constexpr std::string_view kSystem = "--Coordinate System: ";
constexpr std::string_view kShift = "--Setting: datum_shift";
constexpr std::string_view kShiftOfTitle = ", datum shift ";
constexpr std::string_view kWas = ", was ";
constexpr std::string_view kOff = "off";

// What coordinates are made of, as the raw file has it.
struct Frame {
  std::string_view localization = kOff;
  int control = 0;  // how many lists of control points there were
  std::string_view system = {};
  std::string_view shift = {};

  // Without a localization its control does not matter.
  bool operator==(const Frame& other) const {
    return localization == other.localization && system == other.system && shift == other.shift &&
           (localization == kOff || control == other.control);
  }
};

// The datum shift behind "--Setting: datum_shift": "=TOWGS84=1,2,3, was NONE", " removed, was
// NONE".
std::string_view ShiftOf(std::string_view setting) {
  const std::string_view now = setting.substr(0, setting.find(kWas));
  return now.starts_with('=') ? now.substr(1) : std::string_view();
}

// The datum shift that the job began with.
std::string_view FirstShift(std::string_view rawFile) {
  const std::size_t at = rawFile.find(kShift);
  if (at == std::string_view::npos) return {};
  std::string_view rest = rawFile.substr(at);
  const std::string_view line = TakeLine(rest).value_or("");
  const std::size_t was = line.find(kWas);
  return was == std::string_view::npos ? std::string_view() : line.substr(was + kWas.size());
}

// True when the line told of the frame.
bool TakeLineOfFrame(std::string_view line, Frame& frame) {
  if (line == kControl) {
    ++frame.control;
  } else if (line.starts_with(kLocalization)) {
    frame.localization = line.substr(kLocalization.size());
  } else if (line.starts_with(kSystem)) {
    const std::string_view title = line.substr(kSystem.size());
    frame.system = title.substr(0, title.find(kShiftOfTitle));
  } else if (line.starts_with(kShift)) {
    frame.shift = ShiftOf(line.substr(kShift.size()));
  } else {
    return false;
  }
  return true;
}

// Whether the frame changes at all; of the file only the lines that tell of it are looked at.
bool Changes(std::string_view rawFile) {
  if (rawFile.find(kLocalization) != std::string_view::npos ||
      rawFile.find(kShift) != std::string_view::npos) {
    return true;
  }
  Frame first;
  for (std::size_t at = rawFile.find(kSystem); at != std::string_view::npos;
       at = rawFile.find(kSystem, at + 1)) {
    Frame now;
    std::string_view rest = rawFile.substr(at);
    (void)TakeLineOfFrame(TakeLine(rest).value_or(""), now);
    if (first.system.empty()) first = now;
    if (!(now == first)) return true;
  }
  return false;
}

}  // namespace

PointIdSet PointsOfEarlierFrames(std::string_view rawFile, bool alphanumeric) {
  if (!Changes(rawFile)) return {};
  // Of each point its measurements, of which the last may be taken back.
  std::unordered_map<PointId, std::vector<Frame>, PointIdHash> made;
  PutBackRecords putBack;
  bool again = false;
  Frame frame{.shift = FirstShift(rawFile)};
  while (const auto line = TakeLine(rawFile)) {
    if (TakeLineOfFrame(*line, frame)) continue;
    again = putBack.Take(*line) || (again && line->starts_with("--"));
    if (RawCode(*line) == "--GS") {
      const auto id = RawField(*line, "PN");
      if (!id) continue;
      std::vector<Frame>& frames = made[HistoryKey(*id, alphanumeric)];
      if (frames.empty()) frames.push_back(frame);
      if (!std::exchange(again, false)) frames.back() = frame;
    } else if (const auto gone = TakenBackPointId(*line)) {
      std::vector<Frame>& frames = made[HistoryKey(*gone, alphanumeric)];
      if (!frames.empty()) frames.pop_back();
    } else if (const auto id = StoredPointId(*line)) {
      std::vector<Frame>& frames = made[HistoryKey(*id, alphanumeric)];
      if (!line->starts_with("GPS,")) frames.clear();
      if (line->starts_with("GPS,") && !again) frames.push_back(frame);
    }
  }
  PointIdSet earlier;
  for (const auto& [id, frames] : made) {
    if (!frames.empty() && !(frames.back() == frame)) earlier.insert(id);
  }
  return earlier;
}

}  // namespace tarvex

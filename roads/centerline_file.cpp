#include "roads/centerline_file.h"

#include <cerrno>
#include <utility>

#include "core/text/string_table.h"
#include "roads/centerline_reader.h"
#include "roads/road_texts.h"

namespace tarvex {
namespace {

StationLimits LoadStationLimits(FileSystem& files, const std::string& path) {
  std::string text;
  const FileStatus status = ReadWholeFile(files, StationLimitsPath(path), kLargestRoadFile, text);
  return status.ok() ? ReadStationLimits(text) : StationLimits{};
}

Failure<CenterlineFault> NotLoaded(CenterlineFault fault, std::size_t line = 0) {
  return {.code = fault, .place = line};
}

}  // namespace

std::string StationLimitsPath(const std::string& path) {
  const std::size_t name = path.find_last_of("/\\") + 1;  // npos + 1 is 0
  const std::size_t dot = path.rfind('.');
  const bool extended = dot != std::string::npos && dot >= name;
  return (extended ? path.substr(0, dot) : path) + ".cle";
}

Outcome<Centerline*, CenterlineFault> LoadCenterline(FileSystem& files, Road& road,
                                                     const std::string& path,
                                                     LoadCenterlineOptions options,
                                                     const ShowMessage& show) {
  if (path.empty()) return NotLoaded(CenterlineFault::Nothing);
  Centerline loaded;
  if (road.useStationLimits) loaded.limits = LoadStationLimits(files, path);
  std::string text;
  if (const FileStatus status = ReadWholeFile(files, path, kLargestRoadFile, text); !status.ok()) {
    if (status.code == EFBIG) return NotLoaded(CenterlineFault::TooLarge);
    if (options.reportErrors && show) show(Strings().Text(kTextCenterlineNotOpened, {path}));
    return NotLoaded(CenterlineFault::NotOpened);
  }
  auto chain = ReadChain(text, options.keepTangentPoints);
  if (!chain) {
    const bool tooLong = chain.failure().code == ChainFault::TooLong;
    return NotLoaded(tooLong ? CenterlineFault::TooLong : CenterlineFault::Nothing,
                     chain.failure().place);
  }
  loaded.elements = std::move(chain->elements);
  loaded.startPoint = chain->startPoint;
  loaded.notes = std::move(chain->notes);
  loaded.merged = std::move(chain->merged);
  loaded.equations = ReadStationEquations(text);
  loaded.text = std::move(text);
  road.centerline = std::move(loaded);
  road.centerline->startStation = StartStation(road);
  return &*road.centerline;
}

}  // namespace tarvex

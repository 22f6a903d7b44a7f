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

LoadCenterlineResult ResultOf(ReadChainResult result) {
  switch (result) {
    case ReadChainResult::Read:
      return LoadCenterlineResult::Loaded;
    case ReadChainResult::TooLong:
      return LoadCenterlineResult::TooLong;
    case ReadChainResult::Nothing:
      break;
  }
  return LoadCenterlineResult::Nothing;
}

}  // namespace

std::string StationLimitsPath(const std::string& path) {
  const std::size_t name = path.find_last_of("/\\") + 1;  // npos + 1 is 0
  const std::size_t dot = path.rfind('.');
  const bool extended = dot != std::string::npos && dot >= name;
  return (extended ? path.substr(0, dot) : path) + ".cle";
}

CenterlineLoad LoadCenterline(FileSystem& files, Road& road, const std::string& path,
                              LoadCenterlineOptions options, const ShowMessage& show) {
  if (path.empty()) return {};
  Centerline loaded;
  if (road.useStationLimits) loaded.limits = LoadStationLimits(files, path);
  std::string text;
  if (const FileStatus status = ReadWholeFile(files, path, kLargestRoadFile, text); !status.ok()) {
    if (status.code == EFBIG) return {LoadCenterlineResult::TooLarge};
    if (options.reportErrors && show) show(Strings().Text(kTextCenterlineNotOpened, {path}));
    return {LoadCenterlineResult::NotOpened};
  }
  ChainReading reading = ReadChain(text, options.keepTangentPoints);
  const LoadCenterlineResult result = ResultOf(reading.result);
  if (result != LoadCenterlineResult::Loaded) return {result, reading.refusedLine};
  loaded.elements = std::move(reading.elements);
  loaded.startPoint = reading.startPoint;
  loaded.notes = std::move(reading.notes);
  loaded.merged = std::move(reading.merged);
  loaded.equations = ReadStationEquations(text);
  loaded.text = std::move(text);
  road.centerline = std::move(loaded);
  road.centerline->startStation = StartStation(road);
  return {result};
}

}  // namespace tarvex

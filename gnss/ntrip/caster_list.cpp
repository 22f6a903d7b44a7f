#include "gnss/ntrip/caster_list.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <utility>

#include "core/text/edit_distance.h"
#include "core/text/text.h"
#include "core/units/units.h"

namespace tarvex {
namespace {

constexpr std::uint64_t kLargestTable = 32U << 20;
constexpr double kEarthRadiusKm = 6371.0;
constexpr std::string_view kEnd = "ENDSOURCETABLE";

}  // namespace

std::string CasterName(const CasterLogin& caster) {
  const std::string host = caster.host.str();
  const bool bareIpv6 = host.find(':') != std::string::npos;
  return (bareIpv6 ? "[" + host + "]" : host) + ":" + caster.port;
}

PortError CasterList::ReadTable(FileSystem& files, const std::string& path, RecordOrigin origin,
                                LastErrorRecord& errors) {
  std::string bytes;
  const FileStatus status = ReadWholeFile(files, path, kLargestTable, bytes);
  if (status.code == EFBIG) return PortError::TableTooLarge;
  if (!status.ok()) return PortError::TableUnreadable;
  std::vector<CasterRecord> readCasters;
  std::vector<StreamRecord> readStreams;
  bool ended = false;
  std::string_view rest = bytes;
  while (const auto line = TakeLine(rest)) {
    if (line->starts_with(kEnd)) {
      ended = true;
      break;
    }
    if (rest.empty() && origin == RecordOrigin::Caster && !bytes.ends_with('\n')) break;
    StreamRecord stream;
    CasterRecord caster;
    if (line->starts_with("STR;") &&
        ParseStreamRecord(*line, origin, stream, errors) == PortError::None) {
      if (readStreams.size() == kMostStreams) return PortError::TableTooLarge;
      readStreams.push_back(stream);
    } else if (line->starts_with("CAS;") && readCasters.size() < kMostStreams &&
               ParseCasterRecord(*line, origin, caster, errors) == PortError::None) {
      readCasters.push_back(caster);
    }
  }
  complete = ended;
  casters = std::move(readCasters);
  streams = std::move(readStreams);
  return PortError::None;
}

std::string CasterList::Text() const {
  std::string text;
  for (const CasterRecord& caster : casters) text += CasterRecordLine(caster);
  for (const StreamRecord& stream : streams) text += StreamRecordLine(stream);
  return text;
}

const StreamRecord* CasterList::Find(std::string_view mountpoint) const {
  const StreamRecord* found = nullptr;
  const FixedText<32> held(mountpoint);
  for (const StreamRecord& stream : streams) {
    if (stream.mountpoint.view() != held.view()) continue;
    if (found == nullptr || (stream.nmea && !found->nmea)) found = &stream;
  }
  return found;
}

std::vector<std::string> CasterList::MostAlike(std::string_view mountpoint,
                                               std::size_t count) const {
  std::vector<std::pair<std::size_t, std::string>> alike;
  for (const StreamRecord& stream : streams) {
    alike.emplace_back(EditDistance(mountpoint.substr(0, 100), stream.mountpoint.view()),
                       stream.mountpoint.str());
  }
  std::sort(alike.begin(), alike.end());
  std::vector<std::string> names;
  for (std::size_t i = 0; i < alike.size() && i < count; ++i) names.push_back(alike[i].second);
  return names;
}

// Haversine formula.
double DistanceKm(const StreamRecord& stream, double latitude, double longitude) {
  const double phi1 = stream.latitude * kRadiansPerDegree;
  const double phi2 = latitude * kRadiansPerDegree;
  const double sinPhi = std::sin((phi2 - phi1) / 2.0);
  const double sinLambda = std::sin((longitude - stream.longitude) * kRadiansPerDegree / 2.0);
  const double a = sinPhi * sinPhi + std::cos(phi1) * std::cos(phi2) * sinLambda * sinLambda;
  return 2.0 * kEarthRadiusKm * std::asin(std::min(1.0, std::sqrt(a)));
}

}  // namespace tarvex

#include "gnss/ntrip/caster_list.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/edit_distance.h"
#include "core/text.h"
#include "core/units.h"

namespace tarvex {
namespace {

constexpr std::uint64_t kLargestTable = 32U << 20;
constexpr double kEarthRadiusKm = 6371.0;
constexpr std::string_view kEnd = "ENDSOURCETABLE";

}  // namespace

std::string CasterName(const CasterLogin& caster) {
  const std::string host = caster.host.str();
  const bool bare_ipv6 = host.find(':') != std::string::npos;
  return (bare_ipv6 ? "[" + host + "]" : host) + ":" + caster.port;
}

PortError CasterList::ReadTable(FileSystem& files, const std::string& path, RecordOrigin origin,
                                LastErrorRecord& errors) {
  std::string bytes;
  if (!ReadWholeFile(files, path, kLargestTable, bytes).ok()) return PortError::TableTooLarge;
  std::vector<CasterRecord> read_casters;
  std::vector<StreamRecord> read_streams;
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
      if (read_streams.size() == kMostStreams) return PortError::TableTooLarge;
      read_streams.push_back(stream);
    } else if (line->starts_with("CAS;") && read_casters.size() < kMostStreams &&
               ParseCasterRecord(*line, origin, caster, errors) == PortError::None) {
      read_casters.push_back(caster);
    }
  }
  complete = ended;
  casters = std::move(read_casters);
  streams = std::move(read_streams);
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
  const double phi_1 = stream.latitude * kRadiansPerDegree;
  const double phi_2 = latitude * kRadiansPerDegree;
  const double sin_phi = std::sin((phi_2 - phi_1) / 2.0);
  const double sin_lambda = std::sin((longitude - stream.longitude) * kRadiansPerDegree / 2.0);
  const double a = sin_phi * sin_phi + std::cos(phi_1) * std::cos(phi_2) * sin_lambda * sin_lambda;
  return 2.0 * kEarthRadiusKm * std::asin(std::min(1.0, std::sqrt(a)));
}

}  // namespace tarvex

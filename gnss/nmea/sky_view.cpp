#include "gnss/nmea/sky_view.h"

#include "core/text/field_cursor.h"
#include "gnss/nmea/nmea_number.h"
#include "gnss/nmea/sentence_line.h"

namespace tarvex {
namespace {

constexpr std::int64_t kForgottenAfterMs = 5000;
constexpr std::int64_t kUnusedAfterMs = 1500;
constexpr std::size_t kMostSatellites = 512;  // more than the sky holds
constexpr std::size_t kTypeAt = 3;

// What a satellite system is called by its talker, and the number that newer GSA give it.
struct System {
  std::string_view talker;
  SatelliteSystem bit;
  char gsaId;
};

constexpr System kSystems[] = {{"GP", kSatelliteGps, '1'},     {"GL", kSatelliteGlonass, '2'},
                               {"GA", kSatelliteGalileo, '3'}, {"GB", kSatelliteBeiDou, '4'},
                               {"BD", kSatelliteBeiDou, '4'},  {"GQ", kSatelliteQzss, '5'},
                               {"QZ", kSatelliteQzss, '5'},    {"GI", kSatelliteNavIc, '6'}};

// The system of a GSA without one of its own: older receivers number the satellites on.
std::string_view SystemOfNumber(int prn) {
  constexpr int kFirstGlonass = 65;
  constexpr int kLastGlonass = 96;
  return prn >= kFirstGlonass && prn <= kLastGlonass ? "GL" : "GP";
}

bool IsType(std::string_view line, std::string_view type) {
  return line.size() > kTypeAt + type.size() && line[0] == '$' &&
         line.substr(kTypeAt, type.size()) == type;
}

}  // namespace

void SkyView::OnLine(std::string_view line, std::int64_t nowMs) {
  const bool gsv = IsType(line, "GSV,");
  if ((!gsv && !IsType(line, "GSA,")) || !ChecksumHolds(line)) return;
  gsv ? TakeGsv(line, nowMs) : TakeGsa(line, nowMs);
}

bool SkyView::Shows(std::string_view system) const {
  if (systems_ == 0) return true;
  for (const System& known : kSystems) {
    if (known.talker == system) return (known.bit & systems_) != 0;
  }
  return true;
}

void SkyView::TakeGsa(std::string_view line, std::int64_t nowMs) {
  constexpr int kPrns = 12;
  const std::string_view talker = line.substr(1, 2);
  FieldCursor fields(FirstField(line, '*'));
  FieldCursor idAt = fields;
  std::string_view id;
  const bool hasId = idAt.Skip(18) && idAt.Take(id) && !id.empty();
  if (!fields.Skip(3)) return;
  std::string_view field;
  for (int i = 0; i < kPrns && fields.Take(field); ++i) {
    if (field.empty()) continue;
    const int prn = NmeaInteger(field);
    std::string_view system = talker == "GN" ? SystemOfNumber(prn) : talker;
    for (const System& known : kSystems) {
      if (talker == "GN" && hasId && known.gsaId == id[0] && known.talker != "BD" &&
          known.talker != "QZ") {
        system = known.talker;
      }
    }
    if (used_.size() >= kMostSatellites) used_.clear();
    used_[{std::string(system), prn}] = nowMs;
  }
}

std::vector<SystemCount> SkyView::Counts(std::int64_t nowMs) const {
  std::map<std::string, SystemCount> counts;
  for (const SatelliteInView& satellite : InView(nowMs)) ++counts[satellite.system].inView;
  for (const auto& [satellite, toldAtMs] : used_) {
    if (nowMs - toldAtMs <= kUnusedAfterMs && Shows(satellite.first)) {
      ++counts[satellite.first].inUse;
    }
  }
  std::vector<SystemCount> list;
  for (auto& [system, count] : counts) {
    count.system = system;
    list.push_back(count);
  }
  return list;
}

void SkyView::TakeGsv(std::string_view line, std::int64_t nowMs) {
  FieldCursor fields(FirstField(line, '*'));
  if (!fields.Skip(4)) return;
  const std::string system(line.substr(1, 2));
  std::string_view prn;
  std::string_view elevation;
  std::string_view azimuth;
  std::string_view snr;
  while (fields.Take(prn) && fields.Take(elevation) && fields.Take(azimuth) && fields.Take(snr)) {
    if (prn.empty()) continue;
    const int number = NmeaInteger(prn);
    if (seen_.size() >= kMostSatellites) seen_.clear();
    seen_[{system, number}] = {.satellite = {.system = system,
                                             .prn = number,
                                             .elevationDeg = NmeaInteger(elevation),
                                             .azimuthDeg = NmeaInteger(azimuth),
                                             .snr = snr.empty() ? -1 : NmeaInteger(snr)},
                               .atMs = nowMs};
  }
}

std::vector<SatelliteInView> SkyView::InView(std::int64_t nowMs) const {
  std::vector<SatelliteInView> satellites;
  for (const auto& [key, seen] : seen_) {
    if (nowMs - seen.atMs <= kForgottenAfterMs && Shows(key.first))
      satellites.push_back(seen.satellite);
  }
  return satellites;
}

}  // namespace tarvex

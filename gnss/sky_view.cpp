#include "gnss/sky_view.h"

#include "gnss/nmea_number.h"
#include "gnss/sentences/sentence.h"
#include "gnss/text_fields.h"

namespace tarvex {
namespace {

constexpr std::int64_t kForgottenAfterMs = 5000;
constexpr std::size_t kMostSatellites = 512;  // more than the sky holds
constexpr std::size_t kTypeAt = 3;

bool IsGsv(std::string_view line) {
  return line.size() > kTypeAt + 4 && line[0] == '$' && line.substr(kTypeAt, 4) == "GSV,";
}

}  // namespace

void SkyView::OnLine(std::string_view line, std::int64_t now_ms) {
  if (!IsGsv(line) || !ChecksumHolds(line)) return;
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
                                             .elevation_deg = NmeaInteger(elevation),
                                             .azimuth_deg = NmeaInteger(azimuth),
                                             .snr = snr.empty() ? -1 : NmeaInteger(snr)},
                               .at_ms = now_ms};
  }
}

std::vector<SatelliteInView> SkyView::InView(std::int64_t now_ms) const {
  std::vector<SatelliteInView> satellites;
  for (const auto& [key, seen] : seen_) {
    if (now_ms - seen.at_ms <= kForgottenAfterMs) satellites.push_back(seen.satellite);
  }
  return satellites;
}

}  // namespace tarvex

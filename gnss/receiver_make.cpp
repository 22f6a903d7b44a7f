#include "gnss/receiver_make.h"

#include <array>

#include "core/text.h"

namespace tarvex {
namespace {

// Everything that receivers of today send. An epoch of one with four satellite systems is about 35
// lines, two of them satisfy the budget.
constexpr ReceiverSettings kAnyNmea = {.any_talker = true,
                                       .skip_empty = true,
                                       .gll_status = true,
                                       .ggk_published_layout = true,
                                       .ggk_published_quality = true,
                                       .gns_best_mode = true,
                                       .checksum = true,
                                       .line_budget = 80};

constexpr ReceiverSettings kStreamBuffered = {.line_budget = 30};

constexpr std::array kMakes = {
    ReceiverMake{.code = kMakeNmea, .name = "nmea", .description = "NMEA receiver ($GP sentences)"},
    ReceiverMake{.code = kMakeAnyNmea,
                 .name = "any-nmea",
                 .description = "NMEA receiver of today (any talker, checksums verified)",
                 .settings = kAnyNmea},
    ReceiverMake{.code = kMakeSimulated,
                 .name = "simulated",
                 .description = "Simulated receiver",
                 .reader = ReaderKind::Simulated},
    ReceiverMake{.code = kMakeEllipsoidHeight,
                 .name = "nmea-ellipsoid",
                 .description = "NMEA receiver that sends ellipsoid heights",
                 .ellipsoid_height = true},
    ReceiverMake{.code = kMakeHemisphere,
                 .name = "hemisphere",
                 .description = "Hemisphere family",
                 .hemisphere_family = true},
    ReceiverMake{.code = kMakeHemisphereEtx,
                 .name = "hemisphere-etx",
                 .description = "Hemisphere family, frames ended by ETX",
                 .framing = Framing::EtxFrames,
                 .hemisphere_family = true},
    ReceiverMake{.code = kMakeStreamBuffered,
                 .name = "stream",
                 .description = "NMEA through a stream buffer",
                 .reader = ReaderKind::StreamBuffered,
                 .settings = kStreamBuffered},
    ReceiverMake{.code = kMakeNovAtel,
                 .name = "novatel",
                 .description = "NovAtel (BESTPOSA on request)",
                 .reader = ReaderKind::NovAtel,
                 .dop = DopSource::Psrdop},
    ReceiverMake{.code = kMakeNovAtelUser,
                 .name = "novatel-user",
                 .description = "NovAtel with UNDULATION USER",
                 .reader = ReaderKind::NovAtel,
                 .dop = DopSource::Dop},
    ReceiverMake{.code = kMakeNovAtelGsa,
                 .name = "novatel-gsa",
                 .description = "NovAtel commands, DOP by GPGSA on request",
                 .reader = ReaderKind::NovAtel,
                 .dop = DopSource::GsaOnce},
    ReceiverMake{.code = kMakeAshtech,
                 .name = "ashtech",
                 .description = "Ashtech (position on request)",
                 .reader = ReaderKind::Ashtech,
                 .dop = DopSource::Pbn},
    ReceiverMake{.code = kMakeQuality,
                 .name = "nmea-quality",
                 .description = "NMEA receiver that reports quality instead of RMS",
                 .quality_instead_of_rms = true},
    ReceiverMake{.code = kMakeBinaryPackets,
                 .name = "nmea-packets",
                 .description = "NMEA receiver that sends binary packets between",
                 .framing = Framing::BinaryPackets},
};

}  // namespace

std::span<const ReceiverMake> ReceiverMakes() {
  return kMakes;
}

const ReceiverMake& FindMake(int code) {
  for (const ReceiverMake& make : kMakes) {
    if (make.code == code) return make;
  }
  return kMakes.front();
}

const ReceiverMake* FindMake(std::string_view name) {
  for (const ReceiverMake& make : kMakes) {
    if (EqualsIgnoringCase(make.name, name)) return &make;
  }
  return nullptr;
}

}  // namespace tarvex

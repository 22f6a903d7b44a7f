#include "gnss/receivers/receiver_make.h"

#include <array>

#include "core/text/text.h"
#include "gnss/receivers/ashtech_reading.h"
#include "gnss/receivers/dop_request.h"
#include "gnss/receivers/nmea_reading.h"
#include "gnss/receivers/novatel_reading.h"
#include "gnss/receivers/simulated_receiver.h"

namespace tarvex {
namespace {

// Everything that receivers of today send.
constexpr ReceiverSettings kAnyNmea = {.nmea = {.anyTalker = true,
                                                .skipEmpty = true,
                                                .gllStatus = true,
                                                .ggkPublishedLayout = true,
                                                .ggkPublishedQuality = true,
                                                .gnsBestMode = true,
                                                .checksum = true,
                                                .resync = true},
                                       .awaitPrecision = true};

// An epoch of a receiver with four satellite systems is about 35 lines; two of them are the budget.
constexpr int kAnyNmeaLines = 80;
constexpr int kAnyNmeaMs = 3000;
constexpr int kStreamLines = 30;

constexpr ReceiverSettings kAsksForDop = {.requestDop = true};

constexpr std::array kMakes = {
    ReceiverMake{.code = kMakeNmea,
                 .name = "nmea",
                 .description = "NMEA receiver ($GP sentences)",
                 .read = ReadNmeaPosition},
    ReceiverMake{.code = kMakeAnyNmea,
                 .name = "any-nmea",
                 .description = "NMEA receiver of today (any talker, checksums verified)",
                 .read = ReadNmeaPosition,
                 .lineBudget = kAnyNmeaLines,
                 .timeBudgetMs = kAnyNmeaMs,
                 .settings = kAnyNmea},
    ReceiverMake{.code = kMakeSimulated,
                 .name = "simulated",
                 .description = "Simulated receiver",
                 .read = ReadSimulatedPosition,
                 .hasPort = false},
    ReceiverMake{.code = kMakeEllipsoidHeight,
                 .name = "nmea-ellipsoid",
                 .description = "NMEA receiver that sends ellipsoid heights",
                 .read = ReadNmeaPosition,
                 .nmea = {.ellipsoidHeight = true}},
    ReceiverMake{.code = kMakeHemisphere,
                 .name = "hemisphere",
                 .description = "Hemisphere family",
                 .read = ReadNmeaPosition,
                 .nmea = {.hemisphereFamily = true}},
    ReceiverMake{.code = kMakeHemisphereEtx,
                 .name = "hemisphere-etx",
                 .description = "Hemisphere family, frames ended by ETX",
                 .read = ReadNmeaPosition,
                 .framing = Framing::EtxFrames,
                 .nmea = {.hemisphereFamily = true}},
    ReceiverMake{.code = kMakeStreamBuffered,
                 .name = "stream",
                 .description = "NMEA through a stream buffer",
                 .read = ReadNmeaPosition,
                 .nmea = {.streamBuffered = true},
                 .lineBudget = kStreamLines},
    ReceiverMake{.code = kMakeNovAtel,
                 .name = "novatel",
                 .description = "NovAtel (BESTPOSA on request)",
                 .read = ReadNovAtelPosition,
                 .dop = &kPsrdopRequest,
                 .settings = kAsksForDop},
    ReceiverMake{.code = kMakeNovAtelUser,
                 .name = "novatel-user",
                 .description = "NovAtel with UNDULATION USER",
                 .read = ReadNovAtelPosition,
                 .dop = &kDopRequest,
                 .undulationOff = "UNDULATION USER 0.0",
                 .settings = kAsksForDop},
    ReceiverMake{.code = kMakeNovAtelGsa,
                 .name = "novatel-gsa",
                 .description = "NovAtel commands, DOP by GPGSA on request",
                 .read = ReadNovAtelPosition,
                 .dop = &kGsaRequest,
                 .settings = kAsksForDop},
    ReceiverMake{.code = kMakeAshtech,
                 .name = "ashtech",
                 .description = "Ashtech (position on request)",
                 .read = ReadAshtechPosition,
                 .dop = &kPbnRequest,
                 .settings = kAsksForDop},
    ReceiverMake{.code = kMakeQuality,
                 .name = "nmea-quality",
                 .description = "NMEA receiver that reports quality instead of RMS",
                 .read = ReadNmeaPosition,
                 .qualityInsteadOfRms = true},
    ReceiverMake{.code = kMakeBinaryPackets,
                 .name = "nmea-packets",
                 .description = "NMEA receiver that sends binary packets between",
                 .read = ReadNmeaPosition,
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

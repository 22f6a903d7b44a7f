// The receiver makes that the program can be set to: one row a make, chosen by its code in the
// receiver configuration or by its name on the command line. A new make is a new row; one that is
// read in a way of its own brings the function that does it.
#pragma once

#include <span>
#include <string_view>

#include "gnss/nmea/nmea_settings.h"
#include "gnss/port/line_reader.h"
#include "gnss/position/position_state.h"
#include "gnss/position/read_result.h"
#include "gnss/receivers/receiver_settings.h"

namespace tarvex {

struct DopRequest;
struct GnssConnection;

struct ReceiverMake {
  int code = 0;
  std::string_view name;         ///< as a person types it
  std::string_view description;  ///< as lists show it
  /// Reads one position into the state. The port's busy flag is held by the caller.
  GnssReadResult (*read)(GnssPositionState& state, GnssConnection& connection,
                         const ReceiverMake& make) = nullptr;
  bool hasPort = true;  ///< false: there is no hardware behind it
  const DopRequest* dop =
      nullptr;  ///< how its DOP values are asked for; null: it sends GSA by itself
  Framing framing = Framing::TextLines;
  NmeaTraits nmea = {};
  bool qualityInsteadOfRms = false;  ///< notes say HQ and VQ
  /// What tells a NovAtel to send ellipsoid heights.
  std::string_view undulationOff = "UNDULATION 0.0";
  int lineBudget = 15;             ///< lines read for one position before giving up
  int timeBudgetMs = 0;            ///< milliseconds of the same; 0: the lines alone count
  ReceiverSettings settings = {};  ///< where the make starts from
};

inline constexpr int kMakeNmea = 0;
inline constexpr int kMakeAnyNmea = 1;
inline constexpr int kMakeSimulated = 2;
inline constexpr int kMakeEllipsoidHeight = 22;
inline constexpr int kMakeHemisphere = 30;
inline constexpr int kMakeHemisphereEtx = 31;
inline constexpr int kMakeStreamBuffered = 40;
inline constexpr int kMakeNovAtel = 50;
inline constexpr int kMakeNovAtelUser = 51;
inline constexpr int kMakeNovAtelGsa = 52;
inline constexpr int kMakeAshtech = 60;
inline constexpr int kMakeQuality = 70;
inline constexpr int kMakeBinaryPackets = 71;

std::span<const ReceiverMake> ReceiverMakes();

/// The make of a code; a code that no row has reads plain NMEA.
const ReceiverMake& FindMake(int code);

/// The make of a name, letter case ignored; null when there is none.
const ReceiverMake* FindMake(std::string_view name);

}  // namespace tarvex

// The receiver makes that the program can be set to: one row a make, chosen by its code in the
// receiver configuration or by its name on the command line. A new make is a new row.
#pragma once

#include <span>
#include <string_view>

#include "gnss/port/line_reader.h"
#include "gnss/receivers/receiver_settings.h"

namespace tarvex {

/// How positions are asked from a make.
enum class ReaderKind { Nmea, StreamBuffered, NovAtel, Ashtech, Simulated };

/// How a make is asked for its DOP values; most send GSA by themselves.
enum class DopSource { Streamed, Psrdop, Dop, GsaOnce, Pbn };

struct ReceiverMake {
  int code = 0;
  std::string_view name;         ///< as a person types it
  std::string_view description;  ///< as lists show it
  ReaderKind reader = ReaderKind::Nmea;
  DopSource dop = DopSource::Streamed;
  Framing framing = Framing::TextLines;
  bool hemisphereFamily = false;     ///< correction age in GGA, $RD1, GSA field 17 up to the '*'
  bool ellipsoidHeight = false;      ///< heights are ellipsoidal already: no separation is added
  bool qualityInsteadOfRms = false;  ///< notes say HQ and VQ
  int lineBudget = 15;               ///< lines read for one position before giving up
  int timeBudgetMs = 0;              ///< milliseconds of the same; 0: the lines alone count
  ReceiverSettings settings = {};    ///< where the make starts from
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

// The sentences: one row each in sentences.cpp, one function each in a file of its own.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "gnss/nmea/sentence.h"

namespace tarvex {

/// The sentence of a line by its prefix ("$GPGGA,"); null when the line is not a known one. With
/// `anyTalker` those whose row allows it are known behind any two capital letters.
const Sentence* FindSentence(std::string_view line, bool anyTalker);

/// Whether a value of nmea_pos selects a sentence.
bool IsPositionSentence(int nmeaPos);
/// The values of nmea_pos for people: "1 GGA, 2 GLL, ... or 32 PTNL,GGK".
std::string PositionSentenceChoices();

/// The UTC time of day of a position sentence of any talker, in milliseconds; kNoEpoch for every
/// other line.
std::int32_t EpochOfPosition(std::string_view line);

/// $GPGGA: position, quality, satellites, HDOP, height and geoid separation; the correction age for
/// the Hemisphere family.
SentenceResult ReadGga(std::string_view line, const SentenceContext& context,
                       GnssPositionState& state);

/// $GPGNS, $GLGNS, $GNGNS: as GGA, with a mode letter for each satellite system.
SentenceResult ReadGns(std::string_view line, const SentenceContext& context,
                       GnssPositionState& state);

/// $GPGGK, $GPGGQ, $PTNL,GGK: position with an ellipsoid height.
SentenceResult ReadGgk(std::string_view line, const SentenceContext& context,
                       GnssPositionState& state);
SentenceResult ReadGgq(std::string_view line, const SentenceContext& context,
                       GnssPositionState& state);
SentenceResult ReadPtnlGgk(std::string_view line, const SentenceContext& context,
                           GnssPositionState& state);

/// $GPGLL: latitude and longitude alone; the height becomes 0.
SentenceResult ReadGll(std::string_view line, const SentenceContext& context,
                       GnssPositionState& state);

/// $GPGST: one-sigma errors of latitude, longitude and height.
SentenceResult ReadGst(std::string_view line, const SentenceContext& context,
                       GnssPositionState& state);

/// $GPGSA: the satellites used and their PDOP, HDOP and VDOP. With nmea_any_talker the satellites
/// of one GSA behind another are added to those before, as receivers of several systems send one a
/// system.
SentenceResult ReadGsa(std::string_view line, const SentenceContext& context,
                       GnssPositionState& state);

/// $GPRRE: residuals of each satellite, then the horizontal and vertical RMS.
SentenceResult ReadRre(std::string_view line, const SentenceContext& context,
                       GnssPositionState& state);

/// $RD1: the diagnostic of a satellite correction receiver; for the Hemisphere family with that
/// source (kReadRd1).
SentenceResult ReadRd1(std::string_view line, const SentenceContext& context,
                       GnssPositionState& state);

}  // namespace tarvex

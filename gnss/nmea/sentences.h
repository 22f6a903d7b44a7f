// The sentences, one function each. A function takes its fields in their order into the state;
// where they run out it stops, and what was taken stays.
#pragma once

#include "gnss/nmea/sentence.h"

namespace tarvex {

/// $GPGGA: position, quality, satellites, HDOP, height and geoid separation; the correction age for
/// the Hemisphere family.
SentenceResult ReadGga(std::string_view line, const SentenceContext& context,
                       GnssPositionState& state);

/// $GPGNS, $GLGNS, $GNGNS: as GGA, with a mode letter for each satellite system.
SentenceResult ReadGns(std::string_view line, const SentenceContext& context,
                       GnssPositionState& state);

/// $GPGGK, $GPGGQ, $PTNL,GGK: position with an ellipsoid height.
SentenceResult ReadGgk(std::string_view line, SentenceKind kind, const SentenceContext& context,
                       GnssPositionState& state);

/// $GPGLL: latitude and longitude alone; the height becomes 0.
SentenceResult ReadGll(std::string_view line, const SentenceContext& context,
                       GnssPositionState& state);

/// $GPGST: one-sigma errors of latitude, longitude and height.
SentenceResult ReadGst(std::string_view line, const SentenceContext& context,
                       GnssPositionState& state);

/// $GPGSA: the satellites used and their PDOP, HDOP and VDOP. With `joins` the satellites come on
/// top of those of the GSA before it, as receivers of several systems send one a system.
SentenceResult ReadGsa(std::string_view line, bool joins, const SentenceContext& context,
                       GnssPositionState& state);

/// $GPRRE: residuals of each satellite, then the horizontal and vertical RMS.
SentenceResult ReadRre(std::string_view line, const SentenceContext& context,
                       GnssPositionState& state);

/// $RD1: the diagnostic of a satellite correction receiver.
SentenceResult ReadRd1(std::string_view line, GnssPositionState& state);

}  // namespace tarvex

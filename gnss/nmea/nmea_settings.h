// What changes how sentences are read: the user's settings, and the traits of a receiver's make.
#pragma once

namespace tarvex {

inline constexpr int kReadRd1 = 4;  ///< sokAx3DiffChoice

/// Their keys are described in gnss/receivers/receiver_settings.h.
struct NmeaSettings {
  int position = 1;  ///< nmea_pos: the sentence that carries the position (nmea/sentences.cpp)
  int differentialChoice = 0;
  bool anyTalker = false;
  bool skipEmpty = false;
  bool gllStatus = false;
  bool ggkPublishedLayout = false;
  bool ggkPublishedQuality = false;
  bool gnsBestMode = false;
  bool checksum = false;
  bool resync = false;

  bool operator==(const NmeaSettings&) const = default;
};

struct NmeaTraits {
  bool hemisphereFamily = false;  ///< correction age in GGA, $RD1, GSA field 17 up to the '*'
  bool ellipsoidHeight = false;   ///< heights are ellipsoidal already: no separation is added
  /// The data comes through a stream buffer: GGA carries a position whatever nmea_pos says, its
  /// quality 2 is FLOAT, and the GST of an epoch is looked up behind it.
  bool streamBuffered = false;
};

}  // namespace tarvex

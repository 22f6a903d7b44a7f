// The settings of a receiver, one key=value line each in the GNSS settings file:
//   nmea_pos               which sentence carries the position (PositionSentence)
//   nmea_sat               sentence family of the satellite view
//   bNMEA_noRMS            1: the receiver sends no precision sentence
//   sokAx3DiffChoice       differential source of the Hemisphere family; 4 reads $RD1
//   nmea_any_talker        1: any talker for GGA, GLL, GNS, GST and GSA ($GN, $GL, $GA, $GB ...)
//   nmea_skip_empty        1: a GGA or GNS with empty position and quality is left out
//   gll_status             1: a GLL of status V is no fix
//   ggk_published_layout   1: $GPGGK and $GPGGQ have a quality field before their height
//   ggk_published_quality  1: $PTNL,GGK quality codes by their published meaning
//   gns_best_mode          1: the best letter of a GNS mode counts, not the first
//   nmea_checksum          1: a sentence whose checksum is wrong is left out and counted
//   nmea_line_budget       lines read for one position before giving up
//   novatel_zero_undulation  1: the receiver must send ellipsoid heights, and is told so
//   novatel_user_datum     1: the coordinate system needs the user datum for OMNISTAR_HP solutions
//   receiver_port          the receiver's own name of the port we are on (THISPORT), for NovAtel
//   ashtech_model          0 to 6; 0, 3, 4, 5 and 6 answer with $PASHR,POS, the others with GGA
//   ashtech_variant        1: the variant of model 2 that answers with $PASHR,POS
//   ashtech_port           letter of the receiver's port
//   ashtech_skip_retry     1: an empty first line is not read again
//   bSendGGA               1: a caster's stream that needs the rover's position gets it
//   bGPSRover_SendGGA      1: the same; either of the two is enough
//   gga_interval           seconds between two positions for the caster
#pragma once

#include <string_view>

#include "core/fixed_text.h"
#include "core/units.h"

namespace tarvex {

enum class PositionSentence : int {
  Gga = 1,
  Gll = 2,
  Gns = 4,
  Ggk = 8,
  Ggq = 16,
  PtnlGgk = 32,
};

inline constexpr int kReadRd1 = 4;  ///< sokAx3DiffChoice

struct ReceiverSettings {
  PositionSentence position = PositionSentence::Gga;
  int satellite_family = 0;
  bool no_rms = false;
  int differential_choice = 0;
  bool any_talker = false;
  bool skip_empty = false;
  bool gll_status = false;
  bool ggk_published_layout = false;
  bool ggk_published_quality = false;
  bool gns_best_mode = false;
  bool checksum = false;
  int line_budget = 15;
  bool zero_undulation = true;
  bool omnistar_user_datum = false;
  FixedText<15> receiver_port = {};  ///< empty: THISPORT
  int ashtech_model = 0;
  int ashtech_variant = 0;
  char ashtech_port = 'A';
  bool ashtech_skip_retry = false;
  bool send_gga = true;
  bool rover_send_gga = false;
  int gga_interval_s = 10;
  DistanceUnit unit = DistanceUnit::Metres;  ///< the job's; not a key of the file

  std::string_view ReceiverPort() const {
    return receiver_port.empty() ? std::string_view("THISPORT") : receiver_port.view();
  }
  bool operator==(const ReceiverSettings&) const = default;
};

/// Takes the lines of a settings text; unknown keys and values out of range are skipped.
void ReadReceiverSettings(std::string_view text, ReceiverSettings& settings);

/// Takes one setting; false when the key is unknown or the value is none of the key's values.
[[nodiscard]] bool SetReceiverSetting(std::string_view key, std::string_view value,
                                      ReceiverSettings& settings);

}  // namespace tarvex

// The settings of a receiver, one key=value line each in the GNSS settings file:
//   nmea_pos               which sentence carries the position (gnss/nmea/sentences.cpp)
//   nmea_sat               satellite systems of the satellite view, added up (SatelliteSystem);
//                          0: all
//   bNMEA_noRMS            1: the receiver sends no precision sentence: none is waited for or
//   missed sokAx3DiffChoice       differential source of the Hemisphere family; 4 reads $RD1
//   nmea_any_talker        1: any talker for GGA, GLL, GNS, GST and GSA ($GN, $GL, $GA, $GB ...)
//   nmea_skip_empty        1: a GGA or GNS with empty position and quality is left out
//   gll_status             1: a GLL of status V is no fix
//   ggk_published_layout   1: $GPGGK and $GPGGQ have a quality field before their height
//   ggk_published_quality  1: $PTNL,GGK quality codes by their published meaning
//   gns_best_mode          1: the best letter of a GNS mode counts, not the first
//   nmea_checksum          1: a sentence whose checksum is wrong is left out and counted
//   nmea_resync            1: a sentence begins at the last '$' of its line, whatever comes before
//                          it, and ends before the blanks behind it
//   nmea_await_precision   1: an epoch is read on to its precision where that follows the position
//   nmea_line_budget       lines read for one position before giving up; 0: as the make has it
//   nmea_time_budget       milliseconds of the same; 0: as the make has it
//   novatel_zero_undulation  1: the receiver must send ellipsoid heights, and is set to do so
//   novatel_user_datum     1: the coordinate system needs the user datum for OMNISTAR_HP solutions
//   receiver_port          the receiver's own name of the port we are on (THISPORT), for NovAtel
//   dop_on_request         1: DOPs that come with no position are asked for, where the make can be
//   ashtech_model          0 to 6; 0, 3, 4, 5 and 6 answer with $PASHR,POS, the others with GGA
//   ashtech_variant        1: the variant of model 2 that answers with $PASHR,POS
//   ashtech_port           letter of the receiver's port
//   ashtech_skip_retry     1: an empty first line is not read again
//   bSendGGA               1: a caster's stream that needs the rover's position gets it
//   bGPSRover_SendGGA      1: the same; either of the two is enough
//   gga_interval           seconds between two positions for the caster
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/text/fixed_text.h"
#include "gnss/nmea/nmea_settings.h"

namespace tarvex {

/// Of receivers that are asked with NovAtel commands.
struct NovAtelSettings {
  bool zeroUndulation = true;
  bool omnistarUserDatum = false;
  FixedText<15> port = {};  ///< empty: THISPORT

  std::string_view Port() const {
    return port.empty() ? std::string_view("THISPORT") : port.view();
  }
  bool operator==(const NovAtelSettings&) const = default;
};

/// Of receivers that are asked with Ashtech commands.
struct AshtechSettings {
  int model = 0;
  int variant = 0;
  char port = 'A';
  bool skipRetry = false;

  bool operator==(const AshtechSettings&) const = default;
};

/// What a caster gets of the position.
struct CasterSettings {
  bool sendGga = true;
  bool roverSendGga = false;
  int ggaIntervalS = 10;

  bool operator==(const CasterSettings&) const = default;
};

struct ReceiverSettings {
  NmeaSettings nmea = {};
  int satelliteFamily = 0;
  bool noRms = false;
  bool awaitPrecision = false;
  int lineBudget = 0;    ///< 0: the make's
  int timeBudgetMs = 0;  ///< 0: the make's
  bool requestDop = false;
  NovAtelSettings novatel = {};
  AshtechSettings ashtech = {};
  CasterSettings caster = {};

  bool operator==(const ReceiverSettings&) const = default;
};

/// Takes the lines of a settings text; unknown keys and values out of range are skipped.
void ReadReceiverSettings(std::string_view text, ReceiverSettings& settings);

enum class [[nodiscard]] SettingResult { Set, UnknownKey, NotAValue };

/// Takes one setting; nothing is changed unless it is set.
SettingResult SetReceiverSetting(std::string_view key, std::string_view value,
                                 ReceiverSettings& settings);

/// The values that a key takes, for people ("0 or 1"); empty when the key is unknown.
std::string SettingValues(std::string_view key);

/// Every key, in the order of the list above.
std::vector<std::string_view> SettingKeys();

}  // namespace tarvex

#include "app/workflow/known_settings.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "core/text/edit_distance.h"
#include "core/text/number_text.h"
#include "core/text/text.h"
#include "gnss/port/port_address.h"
#include "gnss/quality/quality_gate.h"
#include "gnss/receivers/receiver_make.h"
#include "gnss/receivers/receiver_settings.h"

namespace tarvex {
namespace {

constexpr double kHighestAntenna = 1000.0;
constexpr long long kMostEpochs = 100000;

template <std::size_t kCount>
bool IsOneOf(std::string_view value, const std::array<std::string_view, kCount>& words) {
  return std::find(words.begin(), words.end(), value) != words.end();
}

bool IsAny(std::string_view) {
  return true;
}

bool IsSwitch(std::string_view value) {
  return value == "0" || value == "1";
}

bool IsUnit(std::string_view value) {
  return ParseUnit(value).has_value();
}

bool IsLayout(std::string_view value) {
  return IsOneOf<2>(value, {"alphanumeric", "numeric"});
}

bool IsDirection(std::string_view value) {
  return IsOneOf<2>(value, {"north", "south"});
}

bool IsScale(std::string_view value) {
  const auto scale = ParseNumber(value);
  return scale && *scale > 0.0;
}

bool IsHorizontalFit(std::string_view value) {
  return IsOneOf<4>(value, {"similarity", "fixed-scale", "rotation", "translation"});
}

bool IsVerticalFit(std::string_view value) {
  return IsOneOf<2>(value, {"shift", "plane"});
}

bool IsReceiver(std::string_view value) {
  return static_cast<bool>(ParsePortAddress(value));
}

bool IsMake(std::string_view value) {
  return FindMake(value) != nullptr;
}

bool IsAntennaHeight(std::string_view value) {
  const auto height = ParseNumber(value);
  return height && *height >= 0.0 && *height <= kHighestAntenna;
}

bool IsEpochs(std::string_view value) {
  const auto epochs = ParseInteger(value);
  return epochs && *epochs >= 1 && *epochs <= kMostEpochs;
}

// SCHEME://[USER@]HOST[:PORT]/MOUNTPOINT, and no password in it.
bool IsCorrections(std::string_view value) {
  const std::size_t scheme = value.find("://");
  if (scheme == std::string_view::npos || !value.starts_with("ntrip")) return false;
  value.remove_prefix(scheme + 3);
  const std::size_t at = value.rfind('@');
  if (at != std::string_view::npos) {
    if (value.substr(0, at).find(':') != std::string_view::npos) return false;
    value.remove_prefix(at + 1);
  }
  const std::size_t slash = value.find('/');
  return slash != std::string_view::npos && slash > 0 && slash + 1 < value.size();
}

bool IsVersion(std::string_view value) {
  return value == "1" || value == "2";
}

// A device has no blanks in its name.
bool IsDevice(std::string_view value) {
  return value.find(' ') == std::string_view::npos;
}

constexpr std::string_view kNumber = "a number of 0 or more";
constexpr std::string_view kCorrectionForm =
    "ntrip[s]://[USER@]HOST[:PORT]/MOUNTPOINT, without a password";

constexpr KnownSetting Of(SettingUse use, std::string_view key, std::string_view meaning,
                          std::string_view byDefault, std::string_view values,
                          bool (*accepts)(std::string_view), bool journaled = false) {
  return {.key = key,
          .meaning = meaning,
          .byDefault = byDefault,
          .values = values,
          .use = use,
          .journaled = journaled,
          .accepts = accepts};
}

constexpr KnownSetting Length(KnownSetting setting) {
  setting.isLength = true;
  return setting;
}

// A limit and a setting of the receiver: what they take, their own room says.
constexpr KnownSetting Gate(std::string_view key, std::string_view meaning,
                            std::string_view values = kNumber) {
  return Of(SettingUse::Session, key, meaning, "", values, nullptr, true);
}

constexpr KnownSetting Receiver(std::string_view key, std::string_view meaning) {
  return Of(SettingUse::Session, key, meaning, "", "", nullptr, true);
}

constexpr KnownSetting kSettings[] = {
    Of(SettingUse::Header, "ids", "How points are called", "alphanumeric",
       "alphanumeric or numeric", IsLayout),
    Of(SettingUse::Header, "units", "Distance unit of the job", "metres",
       "metres, us-feet or intl-feet", IsUnit),
    Of(SettingUse::Header, "azimuths", "Where azimuths are measured from", "north",
       "north or south", IsDirection),
    Of(SettingUse::Job, "scale_factor", "Grid scale factor of the raw file", "1",
       "a number above 0", IsScale, true),
    Of(SettingUse::Job, "curvature_correction", "Earth curvature and refraction are corrected", "0",
       "0 or 1", IsSwitch, true),
    Of(SettingUse::Job, "name", "Name of the job in its raw file", "", "text", IsAny),
    Of(SettingUse::System, "system", "Coordinate system, with its geoid", "",
       "a name or EPSG code, with ,GEOID=FILE behind it for a geoid model", IsAny, true),
    Of(SettingUse::System, "definition", "Definition text of the system", "", "text", IsAny, true),
    Of(SettingUse::System, "datum_shift", "Datum shift of the system", "",
       "a label, a grid file, TOWGS84=... or NONE", IsAny, true),
    Of(SettingUse::Localization, "localization", "File of the control points", "", "a .loc file",
       IsAny),
    Of(SettingUse::Localization, "localization_on", "The job uses its localization", "1", "0 or 1",
       IsSwitch),
    Of(SettingUse::Localization, "localization_method", "Horizontal fit", "similarity",
       "similarity, fixed-scale, rotation or translation", IsHorizontalFit),
    Of(SettingUse::Localization, "localization_scale", "Scale of fixed-scale and translation", "1",
       "a number near 1", IsScale),
    Of(SettingUse::Localization, "localization_heights", "Vertical fit", "shift", "shift or plane",
       IsVerticalFit),
    Of(SettingUse::Job, "codes", "The job's list of codes", "", "a file", IsAny),
    Of(SettingUse::Job, "profile", "Profile that gives what the job does not say", "",
       "a name (tarvex profile list)", IsAny),
    Of(SettingUse::Session, "receiver", "The receiver", "",
       "serial:DEVICE[@BAUD], tcp:HOST:PORT, file:LOG or simulated", IsReceiver),
    Of(SettingUse::Session, "receiver_make", "Make of the receiver", "any-nmea",
       "a name of docs/receivers.md", IsMake, true),
    Of(SettingUse::Session, "antenna", "Type of the antenna", "", "text", IsAny, true),
    Length(Of(SettingUse::Session, "antenna_height", "Height of the antenna above the point", "0",
              "a number from 0 to 1000", IsAntennaHeight, true)),
    Of(SettingUse::Session, "average", "Epochs whose mean is stored as one point", "1",
       "a whole number from 1 to 100000", IsEpochs, true),
    Of(SettingUse::Session, "corrections", "Caster and mountpoint", "", kCorrectionForm,
       IsCorrections),
    Of(SettingUse::Session, "password_file", "File with the caster's password, mode 0600", "",
       "a file", IsAny),
    Of(SettingUse::Session, "ca_file", "Authority of the caster's certificate", "", "a file (PEM)",
       IsAny),
    Of(SettingUse::Session, "ntrip_version", "Version of the requests to the caster", "", "1 or 2",
       IsVersion),
    Of(SettingUse::Session, "COM1", "Device of a numbered port (COM1, COM2, ...)", "", "a device",
       IsDevice),
    Gate("gate_solution", "Limit: solution at least", "fixed, float, dgps or autonomous"),
    Length(Gate("gate_hrms", "Limit: greatest HRMS")),
    Length(Gate("gate_vrms", "Limit: greatest VRMS")),
    Gate("gate_pdop", "Limit: greatest PDOP"),
    Gate("gate_satellites", "Limit: fewest satellites", "a whole number of 0 or more"),
    Gate("gate_age", "Limit: greatest age of the corrections, seconds"),
    Gate("gate_stale", "Limit: greatest age of the position, seconds"),
    Receiver("nmea_pos", "Sentence with the position"),
    Receiver("nmea_sat", "Satellite systems that are shown"),
    Receiver("bNMEA_noRMS", "The receiver sends no precision"),
    Receiver("sokAx3DiffChoice", "Differential source of the Hemisphere family"),
    Receiver("nmea_any_talker", "Sentences of any talker are read"),
    Receiver("nmea_skip_empty", "Empty sentences are left out"),
    Receiver("gll_status", "A GLL of status V is no fix"),
    Receiver("ggk_published_layout", "GGK and GGQ have a field before their height"),
    Receiver("ggk_published_quality", "GGK quality by the maker's table"),
    Receiver("gns_best_mode", "The best letter of a GNS mode counts"),
    Receiver("nmea_checksum", "Damaged sentences are left out"),
    Receiver("nmea_resync", "A sentence begins at the last $ of its line"),
    Receiver("nmea_await_precision", "An epoch is read on to its precision"),
    Receiver("nmea_line_budget", "Lines read for one position"),
    Receiver("nmea_time_budget", "Milliseconds read for one position"),
    Receiver("novatel_zero_undulation", "NovAtel: heights above the ellipsoid"),
    Receiver("novatel_user_datum", "NovAtel: user datum for OMNISTAR_HP"),
    Receiver("receiver_port", "The receiver's own name of its port"),
    Receiver("dop_on_request", "DOPs are asked for"),
    Receiver("ashtech_model", "Ashtech: model"),
    Receiver("ashtech_variant", "Ashtech: variant of model 2"),
    Receiver("ashtech_port", "Ashtech: port"),
    Receiver("ashtech_skip_retry", "Ashtech: an empty line is not read again"),
    Receiver("bSendGGA", "The caster gets the rover's position"),
    Receiver("bGPSRover_SendGGA", "The same"),
    Receiver("gga_interval", "Seconds between two positions for the caster"),
};

// COM3=/dev/rfcomm0 names the device of a numbered port.
bool IsPortName(std::string_view key) {
  return key.starts_with("COM") && key.size() > 3 &&
         std::all_of(key.begin() + 3, key.end(), IsDigit);
}

bool IsAccepted(const KnownSetting& setting, std::string_view key, std::string_view value) {
  if (setting.accepts != nullptr) return setting.accepts(value);
  if (key.starts_with("gate_")) {
    GateLimits limits;
    return SetGateLimit(key, value, limits);
  }
  ReceiverSettings settings;
  return SetReceiverSetting(key, value, settings) == SettingResult::Set;
}

}  // namespace

std::string KnownSetting::Values() const {
  return values.empty() ? SettingValues(key) : std::string(values);
}

std::span<const KnownSetting> KnownSettings() {
  return kSettings;
}

const KnownSetting* FindSetting(std::string_view key) {
  const std::string_view wanted = IsPortName(key) ? "COM1" : key;
  const auto found =
      std::find_if(std::begin(kSettings), std::end(kSettings),
                   [wanted](const KnownSetting& setting) { return setting.key == wanted; });
  return found == std::end(kSettings) ? nullptr : &*found;
}

std::string_view NearestSetting(std::string_view key) {
  constexpr std::size_t kNear = 2;
  std::string_view nearest;
  std::size_t least = kNear + 1;
  for (const KnownSetting& known : kSettings) {
    const std::size_t distance = EditDistance(key, known.key);
    if (distance >= least) continue;
    least = distance;
    nearest = known.key;
  }
  return nearest;
}

std::string SettingProblem(std::string_view key, std::string_view value) {
  const KnownSetting* const setting = FindSetting(key);
  if (key == "geoid") return "The geoid belongs to the system: set system=NAME,GEOID=FILE.";
  if (setting == nullptr) {
    const std::string_view nearest = NearestSetting(key);
    return "\"" + std::string(key) + "\" is not a setting" +
           (nearest.empty() ? "." : "; did you mean " + std::string(nearest) + "?");
  }
  // What may hold a password is not repeated.
  if (IsAccepted(*setting, key, value)) return {};
  const bool isTold = setting->key != "corrections";
  return std::string(key) + " takes " + setting->Values() +
         (isTold ? "; not \"" + std::string(value) + "\"." : ".");
}

std::optional<DistanceUnit> ParseUnit(std::string_view name) {
  for (const DistanceUnit unit :
       {DistanceUnit::UsSurveyFeet, DistanceUnit::Metres, DistanceUnit::InternationalFeet}) {
    if (name == UnitKey(unit)) return unit;
  }
  return std::nullopt;
}

std::string_view UnitKey(DistanceUnit unit) {
  switch (unit) {
    case DistanceUnit::UsSurveyFeet:
      return "us-feet";
    case DistanceUnit::InternationalFeet:
      return "intl-feet";
    case DistanceUnit::Metres:
      break;
  }
  return "metres";
}

}  // namespace tarvex

#include "gnss/receivers/receiver_settings.h"

#include <array>

#include "core/text/number_text.h"
#include "core/text/text.h"
#include "gnss/nmea/sentences.h"

namespace tarvex {
namespace {

constexpr long long kMostNumber = 100'000;
constexpr long long kMostLines = 1000;
constexpr long long kEverySystem = 63;
constexpr long long kLastAshtechModel = 6;
constexpr long long kLongestReadingMs = 60'000;
constexpr long long kLongestGgaIntervalS = 3600;

struct Setting {
  std::string_view key;
  std::string_view values;  // empty: those of the position sentences
  bool (*set)(std::string_view value, ReceiverSettings& settings);
};

constexpr std::string_view kSwitch = "0 or 1";
constexpr std::string_view kNumber = "a whole number";

bool SetPosition(std::string_view text, ReceiverSettings& settings) {
  const auto value = ParseInteger(text);
  if (!value || *value < 0 || *value > kMostNumber) return false;
  settings.nmea.position = static_cast<int>(*value);
  return IsPositionSentence(settings.nmea.position);
}

// A whole number from kLeast to kMost; the field is reached through the names of its groups.
template <long long kLeast, long long kMost, auto... kNames>
bool SetNumber(std::string_view text, ReceiverSettings& settings) {
  const auto value = ParseInteger(text);
  if (!value || *value < kLeast || *value > kMost) return false;
  (settings.*....*kNames) = static_cast<int>(*value);
  return true;
}

template <auto... kNames>
bool SetSwitch(std::string_view text, ReceiverSettings& settings) {
  const auto value = ParseInteger(text);
  (settings.*....*kNames) = value == 1;
  return value == 0 || value == 1;
}

bool SetReceiverPort(std::string_view text, ReceiverSettings& settings) {
  text = WithoutOuterBlanks(text);
  if (text.empty() || text.size() > settings.novatel.port.kCapacity) return false;
  settings.novatel.port.Assign(text);
  return true;
}

bool SetAshtechPort(std::string_view text, ReceiverSettings& settings) {
  text = WithoutOuterBlanks(text);
  if (text.size() != 1 || UpperCase(text[0]) < 'A' || UpperCase(text[0]) > 'Z') return false;
  settings.ashtech.port = UpperCase(text[0]);
  return true;
}

using Settings = ReceiverSettings;
constexpr auto kNmea = &Settings::nmea;
constexpr auto kNovAtel = &Settings::novatel;
constexpr auto kAshtech = &Settings::ashtech;
constexpr auto kCaster = &Settings::caster;

constexpr std::array kSettings = {
    Setting{"nmea_pos", {}, SetPosition},
    Setting{"nmea_sat", "0, or the sum of 1 GPS, 2 GLONASS, 4 Galileo, 8 BeiDou, 16 QZSS, 32 NavIC",
            SetNumber<0, kEverySystem, &Settings::satelliteFamily>},
    Setting{"bNMEA_noRMS", kSwitch, SetSwitch<&Settings::noRms>},
    Setting{"sokAx3DiffChoice", kNumber,
            SetNumber<-kMostNumber, kMostNumber, kNmea, &NmeaSettings::differentialChoice>},
    Setting{"nmea_any_talker", kSwitch, SetSwitch<kNmea, &NmeaSettings::anyTalker>},
    Setting{"nmea_skip_empty", kSwitch, SetSwitch<kNmea, &NmeaSettings::skipEmpty>},
    Setting{"gll_status", kSwitch, SetSwitch<kNmea, &NmeaSettings::gllStatus>},
    Setting{"ggk_published_layout", kSwitch, SetSwitch<kNmea, &NmeaSettings::ggkPublishedLayout>},
    Setting{"ggk_published_quality", kSwitch, SetSwitch<kNmea, &NmeaSettings::ggkPublishedQuality>},
    Setting{"gns_best_mode", kSwitch, SetSwitch<kNmea, &NmeaSettings::gnsBestMode>},
    Setting{"nmea_checksum", kSwitch, SetSwitch<kNmea, &NmeaSettings::checksum>},
    Setting{"nmea_resync", kSwitch, SetSwitch<kNmea, &NmeaSettings::resync>},
    Setting{"nmea_await_precision", kSwitch, SetSwitch<&Settings::awaitPrecision>},
    Setting{"nmea_line_budget", "0 to 1000 lines", SetNumber<0, kMostLines, &Settings::lineBudget>},
    Setting{"nmea_time_budget", "0 to 60000 milliseconds",
            SetNumber<0, kLongestReadingMs, &Settings::timeBudgetMs>},
    Setting{"novatel_zero_undulation", kSwitch,
            SetSwitch<kNovAtel, &NovAtelSettings::zeroUndulation>},
    Setting{"novatel_user_datum", kSwitch,
            SetSwitch<kNovAtel, &NovAtelSettings::omnistarUserDatum>},
    Setting{"receiver_port", "a name of 1 to 15 letters", SetReceiverPort},
    Setting{"dop_on_request", kSwitch, SetSwitch<&Settings::requestDop>},
    Setting{"ashtech_model", "0 to 6",
            SetNumber<0, kLastAshtechModel, kAshtech, &AshtechSettings::model>},
    Setting{"ashtech_variant", "0 or 1", SetNumber<0, 1, kAshtech, &AshtechSettings::variant>},
    Setting{"ashtech_port", "a letter", SetAshtechPort},
    Setting{"ashtech_skip_retry", kSwitch, SetSwitch<kAshtech, &AshtechSettings::skipRetry>},
    Setting{"bSendGGA", kSwitch, SetSwitch<kCaster, &CasterSettings::sendGga>},
    Setting{"bGPSRover_SendGGA", kSwitch, SetSwitch<kCaster, &CasterSettings::roverSendGga>},
    Setting{"gga_interval", "1 to 3600 seconds",
            SetNumber<1, kLongestGgaIntervalS, kCaster, &CasterSettings::ggaIntervalS>},
};

const Setting* Find(std::string_view key) {
  for (const Setting& setting : kSettings) {
    if (setting.key == key) return &setting;
  }
  return nullptr;
}

}  // namespace

SettingResult SetReceiverSetting(std::string_view key, std::string_view value,
                                 ReceiverSettings& settings) {
  const Setting* const setting = Find(key);
  if (setting == nullptr) return SettingResult::UnknownKey;
  ReceiverSettings changed = settings;
  if (!setting->set(value, changed)) return SettingResult::NotAValue;
  settings = changed;
  return SettingResult::Set;
}

std::string SettingValues(std::string_view key) {
  const Setting* const setting = Find(key);
  if (setting == nullptr) return {};
  return setting->values.empty() ? PositionSentenceChoices() : std::string(setting->values);
}

std::vector<std::string_view> SettingKeys() {
  std::vector<std::string_view> keys;
  keys.reserve(std::size(kSettings));
  for (const Setting& setting : kSettings) keys.push_back(setting.key);
  return keys;
}

void ReadReceiverSettings(std::string_view text, ReceiverSettings& settings) {
  while (const auto line = TakeLine(text)) {
    const std::size_t equals = line->find('=');
    if (equals == std::string_view::npos) continue;
    (void)SetReceiverSetting(WithoutOuterBlanks(line->substr(0, equals)), line->substr(equals + 1),
                             settings);
  }
}

}  // namespace tarvex

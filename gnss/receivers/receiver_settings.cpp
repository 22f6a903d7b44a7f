#include "gnss/receivers/receiver_settings.h"

#include <array>

#include "core/number_text.h"
#include "core/text.h"

namespace tarvex {
namespace {

constexpr long long kMostLines = 1000;
constexpr long long kEverySystem = 63;
constexpr long long kLastAshtechModel = 6;
constexpr long long kLongestReadingMs = 60'000;

struct Setting {
  std::string_view key;
  std::string_view values;
  bool (*set)(std::string_view value, ReceiverSettings& settings);
};

constexpr std::string_view kSwitch = "0 or 1";
constexpr std::string_view kNumber = "a whole number";

bool SetPosition(std::string_view text, ReceiverSettings& settings) {
  const auto value = ParseInteger(text);
  switch (value.value_or(0)) {
    case 1:
    case 2:
    case 4:
    case 8:
    case 16:
    case 32:
      settings.position = static_cast<PositionSentence>(*value);
      return true;
    default:
      return false;
  }
}

template <int ReceiverSettings::*kField>
bool SetNumber(std::string_view text, ReceiverSettings& settings) {
  constexpr long long kLimit = 100'000;
  const auto value = ParseInteger(text);
  if (!value || *value < -kLimit || *value > kLimit) return false;
  settings.*kField = static_cast<int>(*value);
  return true;
}

template <bool ReceiverSettings::*kField>
bool SetSwitch(std::string_view text, ReceiverSettings& settings) {
  const auto value = ParseInteger(text);
  settings.*kField = value == 1;
  return value == 0 || value == 1;
}

template <int ReceiverSettings::*kField, long long kMost>
bool SetUpTo(std::string_view text, ReceiverSettings& settings) {
  const auto value = ParseInteger(text);
  if (!value || *value < 0 || *value > kMost) return false;
  settings.*kField = static_cast<int>(*value);
  return true;
}

bool SetGgaInterval(std::string_view text, ReceiverSettings& settings) {
  constexpr long long kLongest = 3600;
  const auto value = ParseInteger(text);
  if (!value || *value < 1 || *value > kLongest) return false;
  settings.ggaIntervalS = static_cast<int>(*value);
  return true;
}

bool SetReceiverPort(std::string_view text, ReceiverSettings& settings) {
  text = WithoutOuterBlanks(text);
  if (text.empty() || text.size() > settings.receiverPort.kCapacity) return false;
  settings.receiverPort.Assign(text);
  return true;
}

bool SetAshtechPort(std::string_view text, ReceiverSettings& settings) {
  text = WithoutOuterBlanks(text);
  if (text.size() != 1 || UpperCase(text[0]) < 'A' || UpperCase(text[0]) > 'Z') return false;
  settings.ashtechPort = UpperCase(text[0]);
  return true;
}

constexpr std::array kSettings = {
    Setting{"nmea_pos", "1 GGA, 2 GLL, 4 GNS, 8 GGK, 16 GGQ or 32 PTNL,GGK", SetPosition},
    Setting{"nmea_sat", "0, or the sum of 1 GPS, 2 GLONASS, 4 Galileo, 8 BeiDou, 16 QZSS, 32 NavIC",
            SetUpTo<&ReceiverSettings::satelliteFamily, kEverySystem>},
    Setting{"bNMEA_noRMS", kSwitch, SetSwitch<&ReceiverSettings::noRms>},
    Setting{"sokAx3DiffChoice", kNumber, SetNumber<&ReceiverSettings::differentialChoice>},
    Setting{"nmea_any_talker", kSwitch, SetSwitch<&ReceiverSettings::anyTalker>},
    Setting{"nmea_skip_empty", kSwitch, SetSwitch<&ReceiverSettings::skipEmpty>},
    Setting{"gll_status", kSwitch, SetSwitch<&ReceiverSettings::gllStatus>},
    Setting{"ggk_published_layout", kSwitch, SetSwitch<&ReceiverSettings::ggkPublishedLayout>},
    Setting{"ggk_published_quality", kSwitch, SetSwitch<&ReceiverSettings::ggkPublishedQuality>},
    Setting{"gns_best_mode", kSwitch, SetSwitch<&ReceiverSettings::gnsBestMode>},
    Setting{"nmea_checksum", kSwitch, SetSwitch<&ReceiverSettings::checksum>},
    Setting{"nmea_resync", kSwitch, SetSwitch<&ReceiverSettings::resync>},
    Setting{"nmea_await_precision", kSwitch, SetSwitch<&ReceiverSettings::awaitPrecision>},
    Setting{"nmea_line_budget", "0 to 1000 lines",
            SetUpTo<&ReceiverSettings::lineBudget, kMostLines>},
    Setting{"nmea_time_budget", "0 to 60000 milliseconds",
            SetUpTo<&ReceiverSettings::timeBudgetMs, kLongestReadingMs>},
    Setting{"novatel_zero_undulation", kSwitch, SetSwitch<&ReceiverSettings::zeroUndulation>},
    Setting{"novatel_user_datum", kSwitch, SetSwitch<&ReceiverSettings::omnistarUserDatum>},
    Setting{"receiver_port", "a name of 1 to 15 letters", SetReceiverPort},
    Setting{"dop_on_request", kSwitch, SetSwitch<&ReceiverSettings::requestDop>},
    Setting{"ashtech_model", "0 to 6", SetUpTo<&ReceiverSettings::ashtechModel, kLastAshtechModel>},
    Setting{"ashtech_variant", "0 or 1", SetUpTo<&ReceiverSettings::ashtechVariant, 1>},
    Setting{"ashtech_port", "a letter", SetAshtechPort},
    Setting{"ashtech_skip_retry", kSwitch, SetSwitch<&ReceiverSettings::ashtechSkipRetry>},
    Setting{"bSendGGA", kSwitch, SetSwitch<&ReceiverSettings::sendGga>},
    Setting{"bGPSRover_SendGGA", kSwitch, SetSwitch<&ReceiverSettings::roverSendGga>},
    Setting{"gga_interval", "1 to 3600 seconds", SetGgaInterval},
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

std::string_view SettingValues(std::string_view key) {
  const Setting* const setting = Find(key);
  return setting == nullptr ? std::string_view() : setting->values;
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

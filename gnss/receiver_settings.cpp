#include "gnss/receiver_settings.h"

#include <array>

#include "core/number_text.h"
#include "core/text.h"

namespace tarvex {
namespace {

constexpr long long kLongestBudget = 1000;

struct Setting {
  std::string_view key;
  bool (*set)(std::string_view value, ReceiverSettings& settings);
};

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

bool SetBudget(std::string_view text, ReceiverSettings& settings) {
  const auto value = ParseInteger(text);
  if (!value || *value < 1 || *value > kLongestBudget) return false;
  settings.line_budget = static_cast<int>(*value);
  return true;
}

bool SetGgaInterval(std::string_view text, ReceiverSettings& settings) {
  constexpr long long kLongest = 3600;
  const auto value = ParseInteger(text);
  if (!value || *value < 1 || *value > kLongest) return false;
  settings.gga_interval_s = static_cast<int>(*value);
  return true;
}

bool SetReceiverPort(std::string_view text, ReceiverSettings& settings) {
  text = WithoutOuterBlanks(text);
  if (text.empty() || text.size() > settings.receiver_port.kCapacity) return false;
  settings.receiver_port.Assign(text);
  return true;
}

bool SetAshtechPort(std::string_view text, ReceiverSettings& settings) {
  text = WithoutOuterBlanks(text);
  if (text.size() != 1 || UpperCase(text[0]) < 'A' || UpperCase(text[0]) > 'Z') return false;
  settings.ashtech_port = UpperCase(text[0]);
  return true;
}

constexpr std::array kSettings = {
    Setting{"nmea_pos", SetPosition},
    Setting{"nmea_sat", SetNumber<&ReceiverSettings::satellite_family>},
    Setting{"bNMEA_noRMS", SetSwitch<&ReceiverSettings::no_rms>},
    Setting{"sokAx3DiffChoice", SetNumber<&ReceiverSettings::differential_choice>},
    Setting{"nmea_any_talker", SetSwitch<&ReceiverSettings::any_talker>},
    Setting{"nmea_skip_empty", SetSwitch<&ReceiverSettings::skip_empty>},
    Setting{"gll_status", SetSwitch<&ReceiverSettings::gll_status>},
    Setting{"ggk_published_layout", SetSwitch<&ReceiverSettings::ggk_published_layout>},
    Setting{"ggk_published_quality", SetSwitch<&ReceiverSettings::ggk_published_quality>},
    Setting{"gns_best_mode", SetSwitch<&ReceiverSettings::gns_best_mode>},
    Setting{"nmea_checksum", SetSwitch<&ReceiverSettings::checksum>},
    Setting{"nmea_line_budget", SetBudget},
    Setting{"novatel_zero_undulation", SetSwitch<&ReceiverSettings::zero_undulation>},
    Setting{"novatel_user_datum", SetSwitch<&ReceiverSettings::omnistar_user_datum>},
    Setting{"receiver_port", SetReceiverPort},
    Setting{"ashtech_model", SetNumber<&ReceiverSettings::ashtech_model>},
    Setting{"ashtech_variant", SetNumber<&ReceiverSettings::ashtech_variant>},
    Setting{"ashtech_port", SetAshtechPort},
    Setting{"ashtech_skip_retry", SetSwitch<&ReceiverSettings::ashtech_skip_retry>},
    Setting{"bSendGGA", SetSwitch<&ReceiverSettings::send_gga>},
    Setting{"bGPSRover_SendGGA", SetSwitch<&ReceiverSettings::rover_send_gga>},
    Setting{"gga_interval", SetGgaInterval},
};

}  // namespace

bool SetReceiverSetting(std::string_view key, std::string_view value, ReceiverSettings& settings) {
  for (const Setting& setting : kSettings) {
    if (setting.key != key) continue;
    ReceiverSettings changed = settings;
    if (!setting.set(value, changed)) return false;
    settings = changed;
    return true;
  }
  return false;
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

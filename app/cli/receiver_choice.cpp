#include "app/cli/receiver_choice.h"

#include <algorithm>

namespace tarvex {
namespace {

// A job may say which device stands for a numbered port, as in COM3=/dev/rfcomm0.
void NameDevice(const Settings& jobSettings, PortAddress& address) {
  if (address.kind != PortKind::Serial || !address.target.starts_with("COM")) return;
  std::string key = address.target;
  if (key.ends_with(':')) key.pop_back();
  address.target = jobSettings.GetOr(key, address.target);
}

ExitCode TakeSetting(const std::string& entered, Program& program, ReceiverSettings& settings) {
  const std::size_t equals = std::min(entered.find('='), entered.size());
  const std::string key = entered.substr(0, equals);
  const std::string value = entered.substr(std::min(equals + 1, entered.size()));
  switch (SetReceiverSetting(key, value, settings)) {
    case SettingResult::Set:
      return ExitCode::Done;
    case SettingResult::NotAValue:
      return program.Misuse("\"" + entered + "\": " + key + " takes " +
                            std::string(SettingValues(key)) + ".");
    case SettingResult::UnknownKey:
      break;
  }
  std::string keys;
  for (const std::string_view known : SettingKeys()) keys += " " + std::string(known);
  return program.Misuse("There is no receiver setting \"" + key + "\"; there are:" + keys + ".");
}

const ReceiverMake* MakeOf(const std::string& name, Program& program) {
  const ReceiverMake* const make = FindMake(name);
  if (make != nullptr) return make;
  std::string names;
  for (const ReceiverMake& known : ReceiverMakes()) names += " " + std::string(known.name);
  (void)program.Misuse("There is no receiver make \"" + name + "\"; there are:" + names + ".");
  return nullptr;
}

}  // namespace

void AddReceiverSettings(Command& command, ReceiverChoice& choice) {
  command
      .Add("--make", choice.make, "Make of the receiver (default: any that sends NMEA sentences)")
      .ValueName("NAME");
  command.Add("--set", choice.settings, "A receiver setting KEY=VALUE; may be repeated")
      .ValueName("KEY=VALUE");
  command.Add("--nmea-pos", choice.positionSentence,
              "Sentence with the position: 1 GGA, 2 GLL, 4 GNS, 8 GGK, 16 GGQ, 32 PTNL,GGK");
}

Option AddReceiverOptions(Command& command, ReceiverChoice& choice) {
  const Option receiver = command
                              .Add("--receiver", choice.address,
                                   "serial:DEVICE[@BAUD], tcp:HOST:PORT, file:LOG or simulated")
                              .ValueName("ADDRESS");
  AddReceiverSettings(command, choice);
  return receiver;
}

ExitCode SettleReceiver(const ReceiverChoice& choice, const Settings& jobSettings, Program& program,
                        ChosenReceiver& receiver) {
  auto address = ParsePortAddress(choice.address);
  if (!address) return program.Misuse(address.failure().text);
  receiver.address = *std::move(address);
  NameDevice(jobSettings, receiver.address);
  receiver.makeCode = receiver.address.kind == PortKind::Simulated ? kMakeSimulated : kMakeAnyNmea;
  const std::string makeName =
      choice.make.empty() ? jobSettings.GetOr("receiver_make", "") : choice.make;
  if (!makeName.empty()) {
    const ReceiverMake* const make = MakeOf(makeName, program);
    if (make == nullptr) return ExitCode::WrongUse;
    if (receiver.address.kind != PortKind::Simulated) receiver.makeCode = make->code;
  }
  receiver.settings = FindMake(receiver.makeCode).settings;
  ReadReceiverSettings(jobSettings.Text(), receiver.settings);
  std::vector<std::string> entered = choice.settings;
  if (choice.positionSentence != 0)
    entered.push_back("nmea_pos=" + std::to_string(choice.positionSentence));
  for (const std::string& setting : entered) {
    if (const ExitCode code = TakeSetting(setting, program, receiver.settings);
        code != ExitCode::Done) {
      return code;
    }
  }
  return ExitCode::Done;
}

void TellBadChecksums(Program& program, std::uint64_t count) {
  if (count == 0) return;
  program.console.PrintError(std::to_string(count) + (count == 1 ? " sentence" : " sentences") +
                             " with a wrong checksum " + (count == 1 ? "was" : "were") +
                             " left out.\n");
}

}  // namespace tarvex

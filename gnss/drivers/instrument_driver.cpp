#include "gnss/drivers/instrument_driver.h"

#include <array>

#include "core/text/number_text.h"

namespace tarvex {
namespace {

constexpr std::size_t kReplyCapacity = 512;
constexpr std::string_view kDigits = "0123456789";

}  // namespace

PortError InstrumentDriver::Missing(std::string_view what, std::string_view operation) {
  return Report(
      errors_, PortError::NothingGiven,
      {std::string(what) + " in " + std::string(className_) + "::" + std::string(operation)});
}

PortError InstrumentDriver::AssignProtocol(Protocol* prot) {
  if (prot == nullptr) return Missing("prot", "AssignProtocol");
  mProtocol_ = prot;
  return PortError::None;
}

PortError InstrumentDriver::Assign(Port* con) {
  if (mProtocol_ == nullptr) return Missing("m_protocol", "Assign");
  if (con == nullptr) return Missing("con", "Assign");
  mProtocol_->setConnection(con);
  return PortError::None;
}

PortError InstrumentDriver::Send(std::string_view command, int timeoutMs) {
  if (mProtocol_ == nullptr) return Missing("m_protocol", "Send");
  return mProtocol_->Send(command, timeoutMs, errors_);
}

PortError InstrumentDriver::Receive(std::span<char> buffer, std::string_view& reply,
                                    int timeoutMs) {
  if (mProtocol_ == nullptr) return Missing("m_protocol", "Receive");
  return mProtocol_->Receive(buffer, reply, timeoutMs, errors_);
}

PortError RadioDriver::DoProcessCommand(RadioCommand /*command*/, const RadioModule* modul,
                                        long long& value) {
  if (modul == nullptr) return Missing("modul", "DoProcessCommand for CMD_GET_RADIO_AIR_BAUD");
  if (const PortError error = Send(modul->airBaudQuery, modul->timeoutMs);
      error != PortError::None) {
    return error;
  }
  std::array<char, kReplyCapacity> buffer;
  std::string_view reply;
  if (const PortError error = Receive(buffer, reply, modul->timeoutMs); error != PortError::None) {
    return error;
  }
  return TakeNumber(reply, value) ? PortError::None : Report(errors(), PortError::NoAnswer);
}

bool RadioDriver::TakeNumber(std::string_view reply, long long& value) const {
  const std::size_t at = reply.find_first_of(kDigits);
  if (at == std::string_view::npos) return false;
  value = LeadingInteger(reply.substr(at));
  return true;
}

bool JavadUHFRadio::TakeNumber(std::string_view reply, long long& value) const {
  constexpr std::string_view kReply = "RE";
  constexpr std::size_t kHeader = 5;
  if (reply.starts_with(kReply) && reply.size() >= kHeader) reply.remove_prefix(kHeader);
  return RadioDriver::TakeNumber(reply, value);
}

}  // namespace tarvex

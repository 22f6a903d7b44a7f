// The drivers above the ports: each is given a protocol and then a port, and exchanges data through
// them. A driver that lacks one reports NothingGiven with a text that names what is missing where.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "gnss/drivers/protocol.h"

namespace tarvex {

class InstrumentDriver {
 public:
  virtual ~InstrumentDriver() = default;
  InstrumentDriver(const InstrumentDriver&) = delete;
  InstrumentDriver& operator=(const InstrumentDriver&) = delete;

  /// The protocol is given first; it is not owned.
  PortError AssignProtocol(Protocol* prot);
  /// The port, which goes to the protocol; it is not owned.
  PortError Assign(Port* con);
  PortError Send(std::string_view command, int timeoutMs);
  PortError Receive(std::span<char> buffer, std::string_view& reply, int timeoutMs);

 protected:
  /// `className` is named in the texts of what is missing.
  InstrumentDriver(std::string_view className, LastErrorRecord& errors)
      : className_(className), errors_(errors) {}

  /// Records "WHAT in CLASS::OPERATION".
  PortError Missing(std::string_view what, std::string_view operation);
  LastErrorRecord& errors() { return errors_; }

 private:
  std::string_view className_;
  LastErrorRecord& errors_;
  Protocol* mProtocol_ = nullptr;
};

/// A position source.
class PositionDriver : public InstrumentDriver {
 public:
  explicit PositionDriver(LastErrorRecord& errors) : InstrumentDriver("PositionDriver", errors) {}
};

/// The commands of a radio or modem.
enum class RadioCommand { CMD_GET_RADIO_AIR_BAUD };

/// What a radio module has to be asked for its rate over the air, and how long it takes to answer.
struct RadioModule {
  std::string airBaudQuery;
  int timeoutMs = 1000;
};

/// A radio or modem.
class RadioDriver : public InstrumentDriver {
 public:
  explicit RadioDriver(LastErrorRecord& errors) : InstrumentDriver("RadioDriver", errors) {}

  /// Sends the module's query and takes the first number of the reply. NothingGiven without a
  /// module, NoAnswer when the reply has no number.
  PortError DoProcessCommand(RadioCommand command, const RadioModule* modul, long long& value);

 protected:
  /// The number in a reply; false when there is none.
  virtual bool TakeNumber(std::string_view reply, long long& value) const;
};

/// A UHF radio whose replies begin with "RE" and three hexadecimal digits of length.
class JavadUHFRadio final : public RadioDriver {
 public:
  using RadioDriver::RadioDriver;

 protected:
  bool TakeNumber(std::string_view reply, long long& value) const override;
};

}  // namespace tarvex

// A serial line whose every operation can be made to fail, and which remembers what was done to it.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/serial_device.h"

namespace tarvex {

class ScriptedSerialDevice final : public SerialDevice {
 public:
  std::map<std::string, DeviceStatus> failing;  ///< by the operation's name
  std::vector<std::string> done;
  SerialLine line;
  bool dsr = true;
  std::size_t waiting = 42;

  DeviceStatus Open(const std::string& name) override { return Note("Open", name); }
  DeviceStatus Close() override {
    open_ = false;
    return Note("Close");
  }
  bool isOpen() const override { return open_; }

  DeviceStatus GetTimeouts(DeviceTimeouts& timeouts) override {
    timeouts = {};
    return Note("GetTimeouts");
  }
  DeviceStatus SetTimeouts(const DeviceTimeouts& /*timeouts*/) override {
    return Note("SetTimeouts");
  }
  DeviceStatus Read(std::span<char> /*out*/, std::size_t& got) override {
    got = 0;
    return Note("Read");
  }
  DeviceStatus Write(std::string_view bytes, const WriteTimeouts& /*timeouts*/,
                     std::size_t& written) override {
    written = bytes.size();
    return Note("Write");
  }
  DeviceStatus BytesWaiting(std::size_t& count) override {
    count = waiting;
    return Note("BytesWaiting");
  }
  DeviceStatus PurgeInput() override { return Note("PurgeInput"); }
  DeviceStatus GetLine(SerialLine& out) override {
    out = line;
    return Note("GetLine");
  }
  DeviceStatus SetLine(const SerialLine& in) override {
    const DeviceStatus status = Note("SetLine");
    if (status.ok()) line = in;
    return status;
  }
  DeviceStatus SetBreak() override { return Note("SetBreak"); }
  DeviceStatus ClearBreak() override { return Note("ClearBreak"); }
  DeviceStatus ClearErrors() override { return Note("ClearErrors"); }
  DeviceStatus PurgeOutput() override { return Note("PurgeOutput"); }
  DeviceStatus Flush() override { return Note("Flush"); }
  DeviceStatus SetQueueSizes(std::uint32_t in, std::uint32_t out) override {
    return Note("SetQueueSizes", std::to_string(in) + "," + std::to_string(out));
  }
  DeviceStatus GetDsr(bool& on) override {
    on = dsr;
    return Note("GetDsr");
  }

 private:
  DeviceStatus Note(const std::string& operation, const std::string& argument = {}) {
    done.push_back(argument.empty() ? operation : operation + " " + argument);
    const auto at = failing.find(operation);
    const DeviceStatus status = at == failing.end() ? DeviceStatus{} : at->second;
    if (operation == "Open") open_ = status.ok();
    return status;
  }

  bool open_ = false;
};

}  // namespace tarvex

// A recorded log as a device: what a receiver once sent, read without waiting. Its end is reported
// as the end of data; what is written to it goes nowhere.
#pragma once

#include <memory>

#include "platform/byte_device.h"
#include "platform/file.h"

namespace tarvex {

/// Open takes the path of the log.
std::unique_ptr<ByteDevice> MakeReplayDevice(FileSystem& files);

}  // namespace tarvex

#include "gnss/port/replay_device.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace tarvex {
namespace {

constexpr std::size_t kBlock = 65536;

class ReplayDevice final : public ByteDevice {
 public:
  explicit ReplayDevice(FileSystem& files) : files_(files), block_(kBlock) {}

  DeviceStatus Open(const std::string& name) override {
    offset_ = 0;
    begin_ = end_ = 0;
    return {files_.Open(name, FileAccess::Read, file_).code};
  }
  DeviceStatus Close() override {
    file_.reset();
    begin_ = end_ = 0;
    return {};
  }
  bool isOpen() const override { return file_ != nullptr; }
  bool isRecording() const override { return true; }

  DeviceStatus GetTimeouts(DeviceTimeouts& timeouts) override {
    timeouts = timeouts_;
    return {};
  }
  DeviceStatus SetTimeouts(const DeviceTimeouts& timeouts) override {
    timeouts_ = timeouts;
    return {};
  }

  DeviceStatus Read(std::span<char> out, std::size_t& got) override {
    got = 0;
    while (got < out.size()) {
      if (begin_ == end_) {
        if (const DeviceStatus status = Refill(); !status.ok()) {
          return got > 0 && status.ended() ? DeviceStatus{} : status;
        }
      }
      const std::size_t count = std::min(out.size() - got, end_ - begin_);
      std::memcpy(out.data() + got, block_.data() + begin_, count);
      begin_ += count;
      got += count;
    }
    return {};
  }

  DeviceStatus Write(std::string_view bytes, const WriteTimeouts& /*timeouts*/,
                     std::size_t& written) override {
    written = bytes.size();
    return {};
  }

  DeviceStatus BytesWaiting(std::size_t& count) override {
    std::uint64_t size = 0;
    if (const FileStatus status = file_->Size(size); !status.ok()) return {status.code};
    count = end_ - begin_ + static_cast<std::size_t>(size > offset_ ? size - offset_ : 0);
    return {};
  }

  // Nothing of a recording is ever stale: purging would lose observations.
  DeviceStatus PurgeInput() override { return {}; }

  std::string_view Held() const override { return {block_.data() + begin_, end_ - begin_}; }
  void Skip(std::size_t count) override { begin_ += count; }

 private:
  DeviceStatus Refill() {
    begin_ = end_ = 0;
    const FileStatus status = file_->ReadAt(offset_, block_, end_);
    if (!status.ok()) return {status.code};
    offset_ += end_;
    return {end_ == 0 ? DeviceStatus::kEndOfData : 0};
  }

  FileSystem& files_;
  std::unique_ptr<File> file_;
  std::uint64_t offset_ = 0;
  std::vector<char> block_;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  DeviceTimeouts timeouts_;
};

}  // namespace

std::unique_ptr<ByteDevice> MakeReplayDevice(FileSystem& files) {
  return std::make_unique<ReplayDevice>(files);
}

}  // namespace tarvex

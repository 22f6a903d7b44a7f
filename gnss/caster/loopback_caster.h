// A small NTRIP caster (version 1) on the loopback address, for trials without a network: it serves
// one mountpoint whose stream is a recorded file, and its source table. Each client has a thread.
#pragma once

#include <atomic>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "gnss/ntrip/records.h"
#include "platform/clock.h"
#include "platform/tcp_socket.h"

namespace tarvex {

struct CasterContent {
  StreamRecord stream = {};  ///< its mountpoint is the one that is served
  std::string user = {};     ///< empty: no client is asked for a password
  std::string password = {};
  std::string data = {};                ///< what the stream sends, over and over
  std::uint32_t bytesPerSecond = 1000;  ///< 0: as fast as it is taken
};

class LoopbackCaster {
 public:
  LoopbackCaster(CasterContent content, Clock& clock);
  LoopbackCaster(const LoopbackCaster&) = delete;
  LoopbackCaster& operator=(const LoopbackCaster&) = delete;
  ~LoopbackCaster();

  /// Begins to listen; port 0 takes a free one. The status says why it cannot.
  DeviceStatus Start(int port);
  int port() const { return listener_ ? listener_->port() : 0; }

  /// Closes the open connections; new ones are served.
  void DropClients() { ++generation_; }

  std::uint64_t requests() const { return requests_; }
  std::uint64_t streams() const { return streams_; }
  std::uint64_t bytesSent() const { return bytesSent_; }
  /// The lines that clients sent up since the last call.
  std::vector<std::string> TakeUploads();

 private:
  struct Client {
    std::jthread thread;
    std::atomic<bool> finished = false;
  };

  void AcceptUntilStopped(const std::stop_token& stop);
  void Serve(ByteDevice& device, const std::stop_token& stop);
  void Stream(ByteDevice& device, const std::stop_token& stop);
  std::string Answer(std::string_view request, bool& stream) const;
  std::string SourceTable() const;
  void TakeUpload(std::string_view bytes, std::string& line);
  void RemoveFinished();

  const CasterContent content_;
  Clock& clock_;
  std::unique_ptr<TcpListener> listener_;
  std::atomic<std::uint64_t> generation_ = 0;
  std::atomic<std::uint64_t> requests_ = 0;
  std::atomic<std::uint64_t> streams_ = 0;
  std::atomic<std::uint64_t> bytesSent_ = 0;
  mutable std::mutex mutex_;
  std::vector<std::string> uploads_;  // guarded by mutex_
  std::list<Client> clients_;         // the accepting thread's own
  std::jthread acceptor_;             // last: it ends before what it uses
};

}  // namespace tarvex

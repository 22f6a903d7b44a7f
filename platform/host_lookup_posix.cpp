#include "platform/host_lookup_posix.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace tarvex {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds kStopStep{50};

DeviceStatus Ask(const std::string& host, const std::string& port, int flags,
                 HostAddresses& addresses) {
  addrinfo hints{};
  hints.ai_family = AF_UNSPEC;
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = flags;
  addrinfo* first = nullptr;
  const int result = ::getaddrinfo(host.c_str(), port.c_str(), &hints, &first);
  const int error = errno;
  if (result == 0) {
    addresses.reset(first);
    return {};
  }
  return {result == EAI_SYSTEM ? error : DeviceStatus::kUnknownHost};
}

// Shared by who asks and who waits; the last one of them frees it.
struct Lookup {
  std::string host;
  std::string port;
  std::mutex mutex;
  std::condition_variable answered;
  bool done = false;
  DeviceStatus status;
  HostAddresses addresses;

  void Run() {
    HostAddresses found;
    const DeviceStatus result = Ask(host, port, 0, found);
    const std::lock_guard lock(mutex);
    status = result;
    addresses = std::move(found);
    done = true;
    answered.notify_all();
  }
};

}  // namespace

DeviceStatus LookUpHost(const std::string& host, const std::string& port, std::uint32_t timeoutMs,
                        const StopAsked& stop, HostAddresses& addresses) {
  if (Ask(host, port, AI_NUMERICHOST, addresses).ok()) return {};
  const auto lookup = std::make_shared<Lookup>();
  lookup->host = host;
  lookup->port = port;
  try {
    std::thread([lookup] { lookup->Run(); }).detach();
  } catch (const std::system_error& error) {
    return {error.code().value()};
  }
  const auto until = steady_clock::now() + milliseconds(timeoutMs);
  std::unique_lock lock(lookup->mutex);
  while (!lookup->done) {
    const auto now = steady_clock::now();
    if (now >= until) return {ETIMEDOUT};
    lookup->answered.wait_until(lock, std::min(until, now + kStopStep));
    if (!lookup->done && stop && stop()) return {ECANCELED};
  }
  addresses = std::move(lookup->addresses);
  return lookup->status;
}

}  // namespace tarvex

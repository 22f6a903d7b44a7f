// Fetching a caster's source table into a file: what answers the request is read until the table
// ends. Only the table is stored, from its first "STR" on (or "CAS", when it has no streams),
// without the head of an HTTP answer and the sizes of its chunks.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "gnss/ntrip/connection.h"
#include "gnss/ntrip/progress.h"
#include "gnss/ntrip/surroundings.h"

namespace tarvex {

class SourceTableFetch {
 public:
  /// The request for the table has just been sent through `connection`, which is not owned. Each
  /// receive waits `timeoutMs`, the first one twice as long.
  SourceTableFetch(NtripConnection& connection, const NtripSurroundings& surroundings,
                   std::uint32_t timeoutMs);

  /// NoAnswer after 60 s without a table; FileNotCreated; TableTooLarge beyond 32 MB; what the
  /// caster said instead of a table; Cancelled. A table that breaks off is kept as far as it came.
  PortError Run(const std::string& fileName, NtripProgress& progress);

 private:
  PortError Fail(PortError error);
  std::int64_t ElapsedMs() const;
  PortError Await(std::string& table, NtripProgress& progress);
  PortError Refusal(std::string_view reply);
  PortError Store(std::string table, const std::string& fileName, NtripProgress& progress);

  NtripConnection& connection_;
  const NtripSurroundings& surroundings_;
  const std::uint32_t timeoutMs_;
  const std::int64_t sinceMs_;
};

}  // namespace tarvex

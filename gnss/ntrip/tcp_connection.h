// A TCP connection of this machine, for the NTRIP client.
#pragma once

#include <memory>

#include "gnss/ntrip/connection.h"

namespace tarvex {

/// `errors` receives every failure. While it waits for its caster
/// it asks `stop`, which makes it return Cancelled; while it connects it asks the progress as well.
std::unique_ptr<NtripConnection> MakeTcpNtripConnection(LastErrorRecord& errors,
                                                        StopAsked stop = {});

}  // namespace tarvex

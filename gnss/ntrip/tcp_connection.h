// A connection of this machine, for the NTRIP client: by TCP, or by what a caller puts over it.
#pragma once

#include <functional>
#include <memory>

#include "gnss/ntrip/connection.h"

namespace tarvex {

/// Makes the closed device of one connection; it waits `connectTimeoutMs` for the far end, and
/// `stop` ends its waits.
using CasterDeviceMaker =
    std::function<std::unique_ptr<ByteDevice>(std::uint32_t connectTimeoutMs, StopAsked stop)>;

/// `errors` receives every failure; `makeDevice` makes a plain TCP device when it is not given.
/// While it waits for its caster
/// it asks `stop`, which makes it return Cancelled; while it connects it asks the progress as well.
std::unique_ptr<NtripConnection> MakeTcpNtripConnection(LastErrorRecord& errors,
                                                        StopAsked stop = {},
                                                        CasterDeviceMaker makeDevice = {});

}  // namespace tarvex

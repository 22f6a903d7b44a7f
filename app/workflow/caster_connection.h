// The connection to a caster: plain, or by TLS when its login says so, and then never plain.
#pragma once

#include <memory>

#include "gnss/ntrip/caster_list.h"
#include "gnss/ntrip/connection.h"
#include "platform/byte_device.h"

namespace tarvex {

/// `errors` receives every failure; `stop` ends every waiting.
std::unique_ptr<NtripConnection> MakeCasterConnection(const CasterLogin& caster,
                                                      LastErrorRecord& errors, StopAsked stop);

}  // namespace tarvex

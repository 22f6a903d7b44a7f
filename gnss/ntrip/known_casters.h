// The program's own list of casters and their streams: what casters offered when they were last
// asked, for where there is no network. One list holds all casters; a stream of it names its caster
// in the first two of its own texts, a caster the user that logs in there in the first of its own.
#pragma once

#include <string>
#include <vector>

#include "gnss/ntrip/caster_list.h"

namespace tarvex {

/// Puts the caster and the streams that it offers into `known`, in place of what was known of it.
/// False, with nothing changed, for a host or user that a record does not hold (32 characters).
[[nodiscard]] bool RememberCaster(const CasterLogin& caster, const CasterList& offered,
                                  CasterList& known);

/// The streams of the list that are this caster's.
std::vector<StreamRecord> StreamsOf(const CasterList& known, const CasterRecord& caster);

/// How to reach a caster of the list; its password is in no list.
CasterLogin LoginOf(const CasterRecord& caster);

}  // namespace tarvex

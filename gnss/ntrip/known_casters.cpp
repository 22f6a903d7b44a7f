#include "gnss/ntrip/known_casters.h"

#include <algorithm>
#include <utility>

#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr std::string_view kEncrypted = "tls";

bool IsSame(const CasterRecord& a, const CasterRecord& b) {
  return EqualsIgnoringCase(a.host.view(), b.host.view()) && a.port == b.port;
}

bool IsOf(const StreamRecord& stream, const CasterRecord& caster) {
  return EqualsIgnoringCase(stream.ownText1.view(), caster.host.view()) &&
         stream.ownText2 == caster.port;
}

// What the caster's own table says about itself, if it does.
CasterRecord RecordOf(const CasterLogin& caster, const CasterList& offered) {
  CasterRecord record;
  record.host.Assign(caster.host.view());
  record.port.Assign(caster.port);
  const auto own = std::find_if(offered.casters.begin(), offered.casters.end(),
                                [&](const CasterRecord& one) { return IsSame(one, record); });
  if (own != offered.casters.end()) {
    const CasterRecord reached = std::exchange(record, *own);
    record.host = reached.host;
    record.port = reached.port;
  }
  record.ownText1.Assign(caster.user);
  record.ownText2.Assign(caster.encrypted ? kEncrypted : "");
  return record;
}

}  // namespace

bool RememberCaster(const CasterLogin& caster, const CasterList& offered, CasterList& known) {
  const CasterRecord record = RecordOf(caster, offered);
  if (record.host.view() != caster.host.view() || record.ownText1.view() != caster.user) {
    return false;
  }
  std::erase_if(known.casters, [&](const CasterRecord& one) { return IsSame(one, record); });
  std::erase_if(known.streams, [&](const StreamRecord& one) { return IsOf(one, record); });
  known.casters.push_back(record);
  for (StreamRecord stream : offered.streams) {
    stream.ownText1 = record.host;
    stream.ownText2 = record.port;
    known.streams.push_back(stream);
  }
  return true;
}

std::vector<StreamRecord> StreamsOf(const CasterList& known, const CasterRecord& caster) {
  std::vector<StreamRecord> streams;
  std::copy_if(known.streams.begin(), known.streams.end(), std::back_inserter(streams),
               [&](const StreamRecord& stream) { return IsOf(stream, caster); });
  return streams;
}

CasterLogin LoginOf(const CasterRecord& caster) {
  return {.host = FixedText<128>(caster.host.view()),
          .port = caster.port.str(),
          .user = caster.ownText1.str(),
          .encrypted = caster.ownText2.view() == kEncrypted};
}

}  // namespace tarvex

#include "app/workflow/correction_link.h"
#include "gnss/ntrip/tcp_connection.h"

#include <utility>

namespace tarvex {

CorrectionLink::CorrectionLink(FileSystem& files, Clock& clock, StopAsked stop,
                               const CorrectionPlan& plan, Port& receiver, const LatestGga& gga)
    : stop_([this, asked = std::move(stop)] { return stopping_ || (asked && asked()); }),
      connection_(MakeTcpNtripConnection(errors_, stop_)),
      sink_(receiver, stop_),
      session_(plan, *connection_,
               {.clock = clock, .files = files, .errors = errors_, .workFolder = folder_.path()}),
      thread_((session_.Attach(&sink_, &gga), session_)) {}

}  // namespace tarvex

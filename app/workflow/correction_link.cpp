#include "app/workflow/correction_link.h"

#include <utility>

#include "app/workflow/caster_connection.h"

namespace tarvex {

CorrectionLink::CorrectionLink(FileSystem& files, Clock& clock, StopAsked stop,
                               const CorrectionPlan& plan, Port& receiver, const LatestGga& gga)
    : stop_([this, asked = std::move(stop)] { return stopping_ || (asked && asked()); }),
      connection_(MakeCasterConnection(plan.caster, errors_, stop_)),
      sink_(receiver, stop_),
      session_(plan, *connection_,
               {.clock = clock, .files = files, .errors = errors_, .workFolder = folder_.path()}),
      thread_((session_.Attach(&sink_, &gga), session_)) {}

}  // namespace tarvex

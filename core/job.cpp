#include "core/job.h"

#include "core/number_text.h"
#include "core/point_id.h"

namespace tarvex {

void AdvanceCurrentPoint(Job& job) {
  if (job.alphanumeric) {
    job.currentPointId = NextPointId(PointId(job.currentPointId), job.pointIncrement).str();
    return;
  }
  job.currentPointId = std::to_string(LeadingInteger(job.currentPointId) + job.pointIncrement);
}

}  // namespace tarvex

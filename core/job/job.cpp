#include "core/job/job.h"

#include "core/points/point_key.h"

namespace tarvex {

void AdvanceCurrentPoint(Job& job) {
  job.ids.current = IdAfter(job.ids.current, job.ids.increment, job.store.alphanumeric);
}

}  // namespace tarvex

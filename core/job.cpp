#include "core/job.h"

#include "core/point_key.h"

namespace tarvex {

void AdvanceCurrentPoint(Job& job) {
  job.ids.current = IdAfter(job.ids.current, job.ids.increment, job.store.alphanumeric);
}

}  // namespace tarvex

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

std::string DateText(const LocalTime& time) {
  std::string text;
  AppendInteger(text, time.month, 2);
  text += '-';
  AppendInteger(text, time.day, 2);
  text += '-';
  AppendInteger(text, time.year, 4);
  return text;
}

std::string TimeText(const LocalTime& time) {
  std::string text;
  AppendInteger(text, time.hour, 2);
  text += ':';
  AppendInteger(text, time.minute, 2);
  text += ':';
  AppendInteger(text, time.second, 2);
  return text;
}

}  // namespace tarvex

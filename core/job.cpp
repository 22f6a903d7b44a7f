#include "core/job.h"

#include "core/number_text.h"
#include "core/point_id.h"

namespace tarvex {

std::string PathWithExtension(const std::string& path, std::string_view extension) {
  const std::size_t folder = path.find_last_of('/');
  const std::size_t dot = path.find_last_of('.');
  const bool has_extension =
      dot != std::string::npos && (folder == std::string::npos || dot > folder + 1);
  return path.substr(0, has_extension ? dot : path.size()) + "." + std::string(extension);
}

void AdvanceCurrentPoint(Job& job) {
  if (job.alphanumeric) {
    job.current_point_id = NextPointId(PointId(job.current_point_id), job.point_increment).str();
    return;
  }
  job.current_point_id = std::to_string(LeadingInteger(job.current_point_id) + job.point_increment);
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

#include "roads/template_file.h"
#include "roads/template_reader.h"

#include <cerrno>
#include <utility>

#include "roads/template_writer.h"

namespace tarvex {
double SurfaceSegment::Rise() const {
  switch (kind) {
    case SlopeKind::Grade:
      return width * value / 100.0;
    case SlopeKind::Ratio:
      return value != 0.0 ? width / value : 0.0;
    case SlopeKind::ElevationChange:
      break;
  }
  return value;
}

const Curb* RoadTemplate::FindCurb(std::string_view name) const {
  for (const Curb& curb : curbs) {
    if (curb.name == name) return &curb;
  }
  return nullptr;
}

const Median* RoadTemplate::FindMedian(std::string_view name) const {
  for (const Median& median : medians) {
    if (median.name == name) return &median;
  }
  return nullptr;
}

LoadTemplateResult LoadTemplate(FileSystem& files, Road& road, const std::string& path) {
  std::string text;
  const FileStatus status = ReadWholeFile(files, path, kLargestTemplate, text);
  if (status.code == EFBIG) return LoadTemplateResult::TooLarge;
  if (!status.ok()) return LoadTemplateResult::NotOpened;
  road.section = ReadTemplate(text);
  return LoadTemplateResult::Loaded;
}

FileStatus WriteTemplate(FileSystem& files, const std::string& path, const RoadTemplate& section) {
  const bool asRead = !section.text.empty() && ReadTemplate(section.text) == section;
  return ReplaceWholeFile(files, path, asRead ? section.text : TemplateText(section));
}

}  // namespace tarvex

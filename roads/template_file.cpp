#include "roads/template_file.h"

#include <cerrno>
#include <utility>

#include "core/number_text.h"
#include "core/text.h"

namespace tarvex {
namespace {

constexpr int kSegmentDecimals = 5;
constexpr int kSlopeDecimals = 3;

void AppendSegments(std::string& text, const std::vector<SurfaceSegment>& segments) {
  for (const SurfaceSegment& segment : segments) {
    const bool ratio = segment.kind == SlopeKind::Ratio;
    const bool grade = ratio || segment.kind == SlopeKind::Grade;
    const double as_grade = segment.value != 0.0 ? 100.0 / segment.value : 0.0;
    text += "MOVESL,";
    AppendFixed(text, segment.width, kSegmentDecimals);
    text += ',';
    AppendFixed(text, ratio ? as_grade : segment.value, kSegmentDecimals);
    text += grade ? "%%," : ",";
    text += OneLine(segment.description);
    text += '\n';
  }
}

void AppendRow(std::string& text, std::string_view key, const std::optional<SlopeRow>& row) {
  if (!row) return;
  text += key;
  text += ',';
  AppendFixed(text, row->height, kSlopeDecimals);
  text += ',';
  AppendFixed(text, row->ratio, kSlopeDecimals);
  text += '\n';
}

}  // namespace

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

std::string NewTemplateText(const TemplateDraft& draft) {
  std::string text = "*SURFACEL\nOFFSET,0.00000,0.00000\n";
  AppendSegments(text, draft.left);
  text += "*SURFACER\nOFFSET,0.00000,0.00000\n";
  AppendSegments(text, draft.right);
  text += "*FILL-L\n";
  AppendRow(text, "FILDSL", draft.fill_left);
  text += "RATIO ,1\nSMOOTH,1\nPIVOT ,0\nSERIES,0\nREPEAT,0\nTIE_EX,0\nEXDESC,\n*FILL-R\n";
  AppendRow(text, "FILDSL", draft.fill_right);
  text += "*CUT-L\n";
  AppendRow(text, "CUTUSL", draft.cut_left);
  text +=
      "RATIO ,1\nROCKSL,1.000\nRORDER,0\nSMOOTH,1\nSERIES,0\nDEPTH ,1\nBENCH1,0\n"
      "BENCH2,10.000\nBENCH3,1.00\nPIVOT ,0\nREPEAT,0\nTIE_EX,0\nEXDESC,\n*CUT-R\n";
  AppendRow(text, "CUTUSL", draft.cut_right);
  text +=
      "ROCKSL,1.000\nRORDER,0\n"
      "*SUPER\nLOWADJ,0\nEDGESP,0\nMAXDIF,7.0000\nLOWPT ,\nHIGHPT,\nLOWPT2,\nHIGHP2,\n"
      "*ROW\nRTAINL,0\nRTAINR,0\nROWL  ,0.000\nROWR  ,0.000\n";
  return text;
}

LoadTemplateResult LoadTemplate(FileSystem& files, Road& road, const std::string& path) {
  std::string text;
  const FileStatus status = ReadWholeFile(files, path, kLargestTemplate, text);
  if (status.code == EFBIG) return LoadTemplateResult::TooLarge;
  if (!status.ok()) return LoadTemplateResult::NotOpened;
  road.section = ReadTemplate(text);
  return LoadTemplateResult::Loaded;
}

FileStatus WriteTemplate(FileSystem& files, const std::string& path, const TemplateDraft& draft) {
  return ReplaceWholeFile(files, path, NewTemplateText(draft));
}

FileStatus WriteTemplate(FileSystem& files, const std::string& path, const RoadTemplate& section) {
  return ReplaceWholeFile(files, path, section.text);
}

}  // namespace tarvex

#include "app/workflow/raw_history.h"

#include <algorithm>

#include "core/points/point_key.h"
#include "core/raw_data/raw_fields.h"
#include "core/text/number_text.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr std::string_view kGridComment = "--GS";
constexpr std::string_view kDeletedComment = "--Deleted point:";
constexpr std::string_view kLayoutComment = "--CRD: ";
constexpr std::array<std::string_view, 3> kCoordinateTags = {"N ", "E ", "EL"};

// The fields that a record must have; the description is one of them where it ends the record.
struct RecordForm {
  std::string_view code;
  std::array<std::string_view, 4> tags;
  bool described = false;
};

constexpr std::array kForms = {
    RecordForm{"JB", {"NM", "DT", "TM"}},
    RecordForm{"MO", {"AD", "UN", "SF", "AU"}},
    RecordForm{"OC", {"OP", "N ", "E ", "EL"}, true},
    RecordForm{"LS", {"HR"}},
    RecordForm{"BK", {"OP", "BP", "BS", "BC"}},
    RecordForm{"SS", {"OP", "FP"}, true},
    RecordForm{"TR", {"OP", "FP"}, true},
    RecordForm{"SP", {"PN", "N ", "E ", "EL"}, true},
    RecordForm{"GPS", {"PN", "LA", "LN", "EL"}, true},
    RecordForm{"BP", {"PN", "LA", "LN", "EL"}},
    RecordForm{kGridComment, {"PN", "N ", "E ", "EL"}, true},
};

bool IsWhole(std::string_view record) {
  if (record.find('\0') != std::string_view::npos) return false;
  const std::string_view code = RawCode(record);
  const auto form = std::find_if(kForms.begin(), kForms.end(),
                                 [code](const RecordForm& known) { return known.code == code; });
  // Comments are free; records of other programs are their own.
  if (form == kForms.end()) {
    return record.empty() || record.starts_with("--") || record.find(',') == 2 ||
           record.find(',') == 3;
  }
  if (const auto id = StoredPointId(record); id && id->empty()) return false;
  const auto has = [record](std::string_view tag) {
    return tag.empty() || RawField(record, tag).has_value();
  };
  return std::all_of(form->tags.begin(), form->tags.end(), has) &&
         (!form->described || record.find(",--") != std::string_view::npos);
}

// The point that a comment says is no longer there.
std::optional<std::string_view> GonePointId(std::string_view comment) {
  return comment.starts_with(kDeletedComment)
             ? StoredPointId(comment.substr(kDeletedComment.size()))
             : TakenBackPointId(comment);
}

class HistoryReader {
 public:
  explicit HistoryReader(bool alphanumeric) : alphanumeric_(alphanumeric) {}

  void Take(std::string_view line) {
    ++line_;
    const bool comment = line.starts_with("--");
    if (!comment) ++history_.records;
    if (!IsWhole(line)) {
      history_.broken.push_back({.line = line_, .text = line});
      return;
    }
    if (comment) return TakeComment(line);
    const auto id = StoredPointId(line);
    if (!id) return;
    const std::string_view code = RawCode(line);
    PointHistory& point = Point(*id);
    point = {.last = code == "SP"    ? PointHistory::Last::Typed
                     : code == "GPS" ? PointHistory::Last::Position
                                     : PointHistory::Last::Shot,
             .line = line_,
             .hasCoordinates = false,
             .coordinates = {}};
    if (code == "SP") TakeCoordinates(line, point);
  }

  RawHistory Done() { return std::move(history_); }

 private:
  void TakeComment(std::string_view line) {
    if (RawCode(line) == kGridComment) {
      PointHistory& point = Point(*RawField(line, "PN"));
      if (point.last == PointHistory::Last::Position) TakeCoordinates(line, point);
    } else if (const auto gone = GonePointId(line)) {
      Point(*gone) = {.last = PointHistory::Last::Deleted,
                      .line = line_,
                      .hasCoordinates = false,
                      .coordinates = {}};
    } else if (line.starts_with(kLayoutComment) && history_.layout.empty()) {
      history_.layout = line.substr(kLayoutComment.size());
    }
  }

  PointHistory& Point(std::string_view id) {
    return history_.points[HistoryKey(id, alphanumeric_)];
  }

  static void TakeCoordinates(std::string_view record, PointHistory& point) {
    point.hasCoordinates = true;
    for (std::size_t i = 0; i < kCoordinateTags.size(); ++i) {
      point.coordinates[i] = RawField(record, kCoordinateTags[i]).value_or("");
    }
  }

  bool alphanumeric_;
  std::size_t line_ = 0;
  RawHistory history_;
};

}  // namespace

PointId HistoryKey(std::string_view id, bool alphanumeric) {
  const auto key = MakePointKey(id, alphanumeric);
  return key ? key->id : PointId(WithoutLeadingBlanks(id));
}

RawHistory ReadRawHistory(std::string_view text, bool alphanumeric) {
  HistoryReader reader(alphanumeric);
  while (const auto line = TakeLine(text)) reader.Take(*line);
  return reader.Done();
}

}  // namespace tarvex

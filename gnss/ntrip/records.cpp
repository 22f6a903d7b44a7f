#include "gnss/ntrip/records.h"

#include <algorithm>
#include <cmath>

#include "core/text/number_text.h"
#include "core/text/text.h"
#include "gnss/nmea/nmea_number.h"

namespace tarvex {
namespace {

constexpr int kDegreeDecimals = 2;
constexpr int kOtherFormat = 47;

// Takes fields between semicolons; behind the last one every field is empty. A caster may put a
// field between quotes, which are no part of it; semicolons between them end nothing. A quote that
// is not closed at the end of a field is a character like any other.
class RecordFields {
 public:
  explicit RecordFields(std::string_view line) : rest_(line) {}

  std::string_view Next() {
    std::size_t end = QuotedEnd();
    const bool quoted = end != std::string_view::npos;
    if (!quoted) end = std::min(rest_.find(';'), rest_.size());
    const std::string_view field = quoted ? rest_.substr(1, end - 2) : rest_.substr(0, end);
    rest_.remove_prefix(std::min(end + 1, rest_.size()));
    return field;
  }
  template <std::size_t N>
  void Take(FixedText<N>& text) {
    text.Assign(Next());
  }
  // A number beyond what a double holds is no position: 0, as if it had not been given.
  void Take(double& value) {
    const double read = LeadingDouble(Next());
    value = std::isfinite(read) ? read : 0.0;
  }
  void Take(std::int32_t& value) { value = NmeaInteger(Next()); }
  void Take(bool& value) { value = LeadingInteger(Next()) == 1; }

 private:
  // Behind the closing quote of the next field; npos when it is not a quoted one.
  std::size_t QuotedEnd() const {
    if (!rest_.starts_with('"')) return std::string_view::npos;
    for (std::size_t at = rest_.find('"', 1); at != std::string_view::npos;
         at = rest_.find('"', at + 1)) {
      if (at + 1 == rest_.size() || rest_[at + 1] == ';') return at + 1;
    }
    return std::string_view::npos;
  }

  std::string_view rest_;
};

// Puts fields with semicolons between them, and the line end.
class RecordLine {
 public:
  explicit RecordLine(std::string_view type) : line_(type) {}

  template <std::size_t N>
  void Put(const FixedText<N>& text) {
    Field() += OneField(text.view());
  }
  void Put(double value) { AppendFixed(Field(), value, kDegreeDecimals); }
  void Put(std::int32_t value) { AppendInteger(Field(), value); }
  void Put(bool value) { Field() += value ? '1' : '0'; }
  void Put(char value) { Field() += value; }
  std::string Finish() { return std::move(line_) + "\r\n"; }

 private:
  std::string& Field() { return line_ += ';'; }
  // A text that a person gave may hold what ends a field or a line.
  static std::string OneField(std::string_view text) {
    std::string field = OneLine(text);
    for (char& c : field) {
      if (c == ';') c = ',';
    }
    return field;
  }

  std::string line_;
};

bool TakeType(std::string_view& line, std::string_view type) {
  if (!line.starts_with(type) || line.size() <= type.size() || line[type.size()] != ';') {
    return false;
  }
  line.remove_prefix(type.size() + 1);
  return true;
}

std::string_view WithoutLineEnd(std::string_view line) {
  return line.substr(0, line.find_first_of("\r\n"));
}

void AppendDegrees(std::string& text, double degrees, char positive, char negative) {
  AppendFixed(text, std::abs(degrees), kDegreeDecimals);
  text += degrees < 0.0 ? negative : positive;
}

// The fields that a caster's table and our own list have alike.
void PutStream(const StreamRecord& record, RecordLine& line) {
  line.Put(record.mountpoint);
  line.Put(record.identifier);
  line.Put(record.format);
  line.Put(record.formatDetails);
  line.Put(record.carrier);
  line.Put(record.navSystem);
  line.Put(record.network);
  line.Put(record.country);
  line.Put(record.latitude);
  line.Put(record.longitude);
  line.Put(record.nmea);
  line.Put(record.solution);
  line.Put(record.generator);
  line.Put(record.compression);
  line.Put(record.authentication == '\0' ? 'N' : record.authentication);
}

}  // namespace

int CasterRecord::PortNumber() const {
  return NmeaInteger(port.view());
}

PortError ParseCasterRecord(std::string_view line, RecordOrigin origin, CasterRecord& record,
                            LastErrorRecord& errors) {
  line = WithoutLineEnd(line);
  if (!TakeType(line, "CAS")) return Report(errors, PortError::NotARecord);
  RecordFields fields(line);
  CasterRecord read;
  fields.Take(read.host);
  fields.Take(read.port);
  if (read.host.empty() || read.port.empty()) return Report(errors, PortError::NoHostOrPort);
  fields.Take(read.identifier);
  fields.Take(read.operatorName);
  fields.Take(read.nmea);
  fields.Take(read.country);
  fields.Take(read.latitude);
  fields.Take(read.longitude);
  fields.Take(read.fallbackHost);
  if (origin == RecordOrigin::OwnList) {
    fields.Take(read.fallbackPort);
    fields.Take(read.ownText1);
    fields.Take(read.ownText2);
    fields.Take(read.flag);
  }
  record = read;
  return PortError::None;
}

PortError ParseStreamRecord(std::string_view line, RecordOrigin origin, StreamRecord& record,
                            LastErrorRecord& errors) {
  line = WithoutLineEnd(line);
  if (!TakeType(line, "STR")) return Report(errors, PortError::NotARecord);
  RecordFields fields(line);
  StreamRecord read;
  fields.Take(read.mountpoint);
  fields.Take(read.identifier);
  const std::string_view format = fields.Next();
  read.format.Assign(format);
  read.formatCode = CorrectionFormatCode(format);
  fields.Take(read.formatDetails);
  fields.Take(read.carrier);
  fields.Take(read.navSystem);
  fields.Take(read.network);
  fields.Take(read.country);
  fields.Take(read.latitude);
  fields.Take(read.longitude);
  fields.Take(read.nmea);
  fields.Take(read.solution);
  fields.Take(read.generator);
  fields.Take(read.compression);
  const std::string_view authentication = fields.Next();
  read.authentication = authentication.empty() ? '\0' : authentication.front();
  const std::string_view fee = fields.Next();
  read.fee = fee.starts_with('Y') || (origin == RecordOrigin::OwnList && fee == "1");
  fields.Take(read.bitrate);
  fields.Take(read.misc);
  fields.Take(read.ownText1);
  fields.Take(read.ownText2);
  fields.Take(read.ownText3);
  fields.Take(read.flag);
  record = read;
  return PortError::None;
}

std::string CasterRecordLine(const CasterRecord& record) {
  RecordLine line("CAS");
  line.Put(record.host);
  line.Put(record.port);
  line.Put(record.identifier);
  line.Put(record.operatorName);
  line.Put(record.nmea);
  line.Put(record.country);
  line.Put(record.latitude);
  line.Put(record.longitude);
  line.Put(record.fallbackHost);
  line.Put(record.fallbackPort);
  line.Put(record.ownText1);
  line.Put(record.ownText2);
  line.Put(record.flag);
  return line.Finish();
}

std::string StreamRecordLine(const StreamRecord& record) {
  RecordLine line("STR");
  PutStream(record, line);
  line.Put(record.fee);
  line.Put(record.bitrate);
  line.Put(record.misc);
  line.Put(record.ownText1);
  line.Put(record.ownText2);
  line.Put(record.ownText3);
  line.Put(record.flag);
  return line.Finish();
}

std::string SourceTableLine(const StreamRecord& record) {
  RecordLine line("STR");
  PutStream(record, line);
  line.Put(record.fee ? 'Y' : 'N');
  line.Put(record.bitrate);
  line.Put(record.misc);
  return line.Finish();
}

std::string StreamPositionText(const StreamRecord& record) {
  std::string text;
  AppendDegrees(text, record.latitude, 'N', 'S');
  text += ' ';
  const double longitude = record.longitude > 180.0 ? record.longitude - 360.0 : record.longitude;
  AppendDegrees(text, longitude, 'E', 'W');
  text += ' ';
  text += record.identifier.view();
  text += ", ";
  text += record.country.view();
  return text;
}

int CorrectionFormatCode(std::string_view format) {
  const auto contains = [format](std::string_view part) {
    return format.find(part) != std::string_view::npos;
  };
  if (contains("RTCM")) {
    if (contains("2.1")) return 36;
    if (contains("2.2")) return 37;
    if (contains("2.3")) return 38;
    if (contains("3.0") || contains("RTCM 3")) return 39;
    return contains("RTCM3") ? 39 : 16;
  }
  if (contains("CMR+")) return 15;
  if (contains("CMR")) return 12;
  return contains("RTCA") ? 17 : kOtherFormat;
}

}  // namespace tarvex

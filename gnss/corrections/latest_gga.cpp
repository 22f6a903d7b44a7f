#include "gnss/corrections/latest_gga.h"

#include "core/text/field_cursor.h"
#include "gnss/nmea/nmea_number.h"
#include "gnss/nmea/sentence_line.h"
#include "gnss/nmea/sentences.h"

namespace tarvex {
namespace {

constexpr std::size_t kLongest = 120;
constexpr int kQualityField = 6;

}  // namespace

void LatestGga::OnLine(std::string_view line) {
  const Sentence* const sentence = FindSentence(line, true);
  if (sentence == nullptr || sentence->read != ReadGga || line.size() > kLongest) return;
  if (!ChecksumHolds(line)) return;
  const bool fixed = NmeaInteger(FirstField(SkipFields(line, ',', kQualityField), ',')) != 0;
  const std::lock_guard lock(mutex_);
  sentence_ = fixed ? line : std::string_view();
  if (fixed) ++taken_;
}

std::string LatestGga::Get() const {
  const std::lock_guard lock(mutex_);
  return sentence_.empty() ? std::string() : sentence_ + "\r\n";
}

std::string WithGpTalker(std::string_view gga) {
  if (gga.size() < 3) return std::string(gga);
  const std::string_view body = FirstField(gga.substr(3), '*');
  const std::string sentence = "GP" + std::string(body.substr(0, body.find_first_of("\r\n")));
  unsigned sum = 0;
  for (const char c : sentence) sum ^= static_cast<unsigned char>(c);
  constexpr std::string_view kHex = "0123456789ABCDEF";
  return "$" + sentence + "*" + kHex[sum >> 4 & 15U] + kHex[sum & 15U] + "\r\n";
}

}  // namespace tarvex

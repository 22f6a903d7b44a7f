#include "coordsys/definition/definition_reader.h"

#include <iterator>

#include "coordsys/coordsys_texts.h"
#include "coordsys/definition/definition_scanner.h"
#include "coordsys/definition/parameter_keywords.h"
#include "coordsys/projections/projection_families.h"
#include "core/text/number_text.h"
#include "core/text/string_table.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr std::size_t kNameLimit = 100;

std::string_view WithoutOuterQuotes(std::string_view text) {
  if (text.starts_with('"')) text.remove_prefix(1);
  if (text.ends_with('"')) text.remove_suffix(1);
  return text;
}

void ReadCompoundName(DefinitionScanner& scanner, std::string& compoundName) {
  if (!scanner.AtStartOf("COMPD_CS") || !scanner.Pass('[')) return;
  if (const auto name = scanner.Take(',')) compoundName = WithoutOuterQuotes(*name);
}

// At "DATUM": its name.
void ReadDatum(DefinitionScanner& scanner, ProjectionRecord& record) {
  if (!scanner.Pass('[')) return;
  if (const auto item = scanner.Before(',', kNameLimit)) {
    if (const auto name = DefinitionScanner(*item).TakeQuoted()) record.datumName.Assign(*name);
  }
  scanner.Pass(',');
}

// At "SPHEROID": name, semi-major axis, inverse flattening.
void ReadSpheroid(DefinitionScanner& scanner, ProjectionRecord& record) {
  if (!scanner.Pass('[')) return;
  const auto name = scanner.Take(',');
  if (!name) return;
  if (const auto quoted = DefinitionScanner(*name).TakeQuoted()) {
    record.ellipsoidName.Assign(*quoted);
  }
  const auto semiMajor = scanner.Take(',');
  if (!semiMajor) return;
  record.semiMajorM = LeadingDouble(*semiMajor);
  const auto inverseFlattening = scanner.Take(']');
  if (inverseFlattening) record.flattening = 1.0 / LeadingDouble(*inverseFlattening);
}

// True when the list is there.
bool ReadToWgs84(std::string_view rest, ProjectionRecord& record) {
  const std::size_t at = rest.find("TOWGS84");
  if (at == std::string_view::npos) return false;
  DefinitionScanner scanner(rest.substr(at));
  const bool bracketed = scanner.AtStartOf("TOWGS84[");
  if (!scanner.Pass('[')) return false;
  const auto list = scanner.Take(']');
  if (!list) return false;

  double* const fields[] = {&record.shiftDxM,      &record.shiftDyM,      &record.shiftDzM,
                            &record.shiftRxArcsec, &record.shiftRyArcsec, &record.shiftRzArcsec,
                            &record.shiftScalePpm};
  std::string_view numbers = *list;
  for (std::size_t i = 0; i < std::size(fields) && !numbers.empty(); ++i) {
    const std::size_t comma = numbers.find(',');
    const double value = LeadingDouble(numbers.substr(0, comma));
    const bool rotation = i >= 3 && i <= 5;
    *fields[i] = rotation ? value * -1.0 : value;
    numbers.remove_prefix(comma == std::string_view::npos ? numbers.size() : comma + 1);
  }
  return bracketed;
}

// Walks the comma-separated items to "PROJECTION" and reads its name; false when there is none.
bool ReadProjectionName(DefinitionScanner scanner, ProjectionRecord& record) {
  do {
    if (!scanner.AtStartOf("PROJECTION")) continue;
    scanner.Pass('[');
    if (const auto name = scanner.TakeQuoted()) record.projectionName.Assign(*name);
    return true;
  } while (scanner.Pass(','));
  return false;
}

void ReadParameter(DefinitionScanner scanner, ProjectionRecord& record) {
  const auto keyword = scanner.TakeQuoted();
  if (!keyword || !scanner.Pass(',')) return;
  if (const auto number = scanner.Before(']')) SetParameter(record, *keyword, *number);
}

void ReadVerticalDatum(DefinitionScanner scanner, ProjectionRecord& record) {
  const std::string_view item = scanner.rest().substr(0, scanner.rest().find(','));
  const std::size_t at = item.find("VERT_DATUM");
  if (at == std::string_view::npos) return;
  const auto name = DefinitionScanner(scanner.rest().substr(at)).TakeQuoted();
  if (!name) return;
  record.verticalDatumName.Assign(EqualsIgnoringCase(*name, "Ellipsoid") ? "" : *name);
}

void ReadParameters(DefinitionScanner scanner, ProjectionRecord& record) {
  do {
    if (scanner.AtStartOf("PARAMETER")) ReadParameter(scanner, record);
    ReadVerticalDatum(scanner, record);
  } while (scanner.Pass(','));
}

void TellUnknownProjection(const ProjectionRecord& record, MessageBox* messages) {
  if (!messages) return;
  const std::string text = Strings().Text(kTextUnknownProjection) + record.projectionName.str() +
                           Strings().Text(kTextProjectionLeftAsItWas);
  messages->Show(Strings().Text(kTextCoordinateSystem), text);
}

}  // namespace

int ReadDefinition(std::string_view text, ProjectionRecord& record, DefinitionFacts& facts,
                   MessageBox* messages) {
  DefinitionScanner scanner(text.substr(0, kDefinitionLimit));
  facts.givesShift = false;
  ReadCompoundName(scanner, facts.compoundName);
  if (!scanner.WalkInto("PROJCS") || !scanner.WalkInto("DATUM")) return 1;
  ReadDatum(scanner, record);
  if (!scanner.WalkInto("SPHEROID")) return 1;
  ReadSpheroid(scanner, record);
  facts.givesShift = ReadToWgs84(scanner.rest(), record);

  const bool projectionSeen = ReadProjectionName(scanner, record);
  ReadParameters(scanner, record);
  if (!projectionSeen) return 1;

  const auto type = ProjectionCode(record.projectionName.view());
  if (type) {
    record.projectionType = static_cast<int>(*type);
  } else {
    TellUnknownProjection(record, messages);
  }
  if (const auto settle = FamilyOf(record.projectionType).settle) settle(record);
  record.ellipsoidCode = kUserEllipsoid;
  return 1;
}

std::string OneLineDefinition(std::string_view text) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  std::string line;
  line.reserve(text.size());
  bool quoted = false;
  for (const char c : text) {
    if (c == '"') quoted = !quoted;
    const bool blank = c == ' ' || (c >= '\t' && c <= '\r');
    if (quoted) {
      line += blank ? ' ' : c == ',' ? ';' : c;
    } else if (!blank) {
      line += c == '(' ? '[' : c == ')' ? ']' : c;
    }
  }
  return line;
}

}  // namespace tarvex

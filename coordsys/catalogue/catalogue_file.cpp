#include "coordsys/catalogue/catalogue_file.h"

#include <algorithm>

#include "coordsys/coordsys_texts.h"
#include "coordsys/definition/definition_reader.h"
#include "core/text/string_table.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr std::size_t kNameLimit = 200;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// At the start of any line: joined files have marks in their midst.
std::string_view WithoutByteOrderMark(std::string_view line) {
  while (line.starts_with(kByteOrderMark)) line.remove_prefix(kByteOrderMark.size());
  return line;
}

bool HasControlCharacter(std::string_view text) {
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7F) return true;
  }
  return false;
}

// Where the line of a name is in the bytes, its line end included.
struct Place {
  std::size_t begin = 0;
  std::size_t end = 0;
};

std::optional<Place> PlaceOf(std::string_view bytes, std::string_view name) {
  std::size_t begin = 0;
  std::string_view rest = bytes;
  while (const auto line = TakeLine(rest)) {
    const std::size_t end = bytes.size() - rest.size();
    const auto system = ReadCatalogueLine(*line);
    if (system && EqualsIgnoringCase(system->name, name)) return Place{begin, end};
    begin = end;
  }
  return std::nullopt;
}

std::string LineOf(const CatalogueLine& system) {
  std::string line(system.name);
  line += '\t';
  line += system.definition;
  if (!system.area.empty()) line += '\t';
  line += system.area;
  line += '\n';
  return line;
}

}  // namespace

std::optional<CatalogueLine> ReadCatalogueLine(std::string_view line) {
  line = WithoutByteOrderMark(line);
  const std::size_t tab = line.find('\t');
  if (line.starts_with('#') || tab == std::string_view::npos) return std::nullopt;
  const std::string_view values = line.substr(tab + 1);
  // From the end, where the area is: a definition is long and has no tabs.
  const std::size_t second = std::min(values.rfind('\t'), values.size());
  const CatalogueLine system{
      WithoutOuterBlanks(line.substr(0, tab)), WithoutOuterBlanks(values.substr(0, second)),
      WithoutOuterBlanks(values.substr(std::min(second + 1, values.size())))};
  if (system.name.empty() || system.definition.empty()) return std::nullopt;
  return HasControlCharacter(system.name) ? std::nullopt : std::optional(system);
}

NamedSystem SystemOf(const CatalogueLine& line) {
  return {std::string(line.name), std::string(line.definition), std::string(line.area)};
}

std::vector<NamedSystem> ReadCatalogue(std::string_view bytes, std::size_t* skipped) {
  std::vector<NamedSystem> systems;
  std::size_t others = 0;
  while (const auto line = TakeLine(bytes)) {
    if (const auto system = ReadCatalogueLine(*line)) {
      systems.push_back(SystemOf(*system));
    } else if (!WithoutByteOrderMark(*line).starts_with('#') &&
               !WithoutOuterBlanks(*line).empty()) {
      ++others;
    }
  }
  if (skipped) *skipped = others;
  return systems;
}

bool IsCatalogueName(std::string_view name) {
  return !name.empty() && name.size() <= kNameLimit && !HasControlCharacter(name) &&
         !name.starts_with('#') && !name.starts_with(kByteOrderMark) &&
         WithoutOuterBlanks(name) == name &&
         FindIgnoringCase(name, ",GEOID=") == std::string_view::npos;
}

CatalogueResult AddToCatalogue(std::string& bytes, std::string_view name,
                               std::string_view definition) {
  if (!IsCatalogueName(name)) return CatalogueResult::BadName;
  const std::string oneLine = OneLineDefinition(definition);
  if (oneLine.empty() || oneLine.size() > kDefinitionLimit || HasControlCharacter(oneLine)) {
    return CatalogueResult::BadDefinition;
  }
  if (PlaceOf(bytes, name)) return CatalogueResult::NameTaken;
  if (!bytes.empty() && bytes.back() != '\n') bytes += '\n';
  bytes += LineOf({name, oneLine});
  return CatalogueResult::Done;
}

CatalogueResult RenameInCatalogue(std::string& bytes, std::string_view name,
                                  std::string_view newName) {
  if (!IsCatalogueName(newName)) return CatalogueResult::BadName;
  const auto place = PlaceOf(bytes, name);
  if (!place) return CatalogueResult::NotFound;
  const auto taken = PlaceOf(bytes, newName);
  if (taken && taken->begin != place->begin) return CatalogueResult::NameTaken;
  std::string_view line = std::string_view(bytes).substr(place->begin, place->end - place->begin);
  CatalogueLine system = ReadCatalogueLine(TakeLine(line).value_or("")).value_or(CatalogueLine{});
  system.name = newName;
  const std::string renamed = LineOf(system);
  bytes.replace(place->begin, place->end - place->begin, renamed);
  return CatalogueResult::Done;
}

CatalogueResult RemoveFromCatalogue(std::string& bytes, std::string_view name) {
  const auto place = PlaceOf(bytes, name);
  if (!place) return CatalogueResult::NotFound;
  bytes.erase(place->begin, place->end - place->begin);
  return CatalogueResult::Done;
}

std::string CatalogueText(CatalogueResult result) {
  switch (result) {
    case CatalogueResult::Done:
      return Strings().Text(kTextCatalogueChanged);
    case CatalogueResult::NotFound:
      return Strings().Text(kTextNoSuchSystem);
    case CatalogueResult::NameTaken:
      return Strings().Text(kTextSystemExists);
    case CatalogueResult::BadName:
      return Strings().Text(kTextNotASystemName);
    case CatalogueResult::BadDefinition:
      return Strings().Text(kTextNotASystemDefinition);
    case CatalogueResult::FileFailed:
      break;
  }
  return Strings().Text(kTextCatalogueNotChanged);
}

}  // namespace tarvex

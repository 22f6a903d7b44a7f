#include "coordsys/system_catalogue.h"

#include <utility>

#include "coordsys/utm_zones.h"
#include "core/number_text.h"
#include "core/text.h"

namespace tarvex {
namespace {

constexpr std::string_view kGeoidKey = ",GEOID=";
constexpr std::string_view kGeoidOff = "OFF";
constexpr std::uint64_t kLargestFile = 256u << 20;

bool Contains(std::string_view text, std::string_view part) {
  return FindIgnoringCase(text, part) != std::string_view::npos;
}

// `AUTHORITY["EPSG","32633"]` for "EPSG:32633"; empty for anything else.
std::string AuthorityOf(std::string_view part) {
  constexpr std::string_view kPrefix = "EPSG";
  if (!EqualsIgnoringCase(part.substr(0, kPrefix.size()), kPrefix)) return "";
  part.remove_prefix(kPrefix.size());
  while (part.starts_with(':') || part.starts_with(' ')) part.remove_prefix(1);
  const auto code = ParseInteger(part);
  return code ? R"(AUTHORITY["EPSG",")" + std::to_string(*code) + R"("])" : "";
}

// Every system of a catalogue's bytes that `wanted` takes.
template <typename Wanted>
void Collect(std::string_view bytes, const Wanted& wanted, std::vector<NamedSystem>& found) {
  while (const auto line = TakeLine(bytes)) {
    const auto system = ReadCatalogueLine(*line);
    if (system && wanted(system->name, system->definition)) {
      found.push_back({std::string(system->name), std::string(system->definition)});
    }
  }
}

template <typename Wanted>
void CollectUtm(const Wanted& wanted, std::vector<NamedSystem>& found) {
  for (const Hemisphere hemisphere : {Hemisphere::North, Hemisphere::South}) {
    for (int number = 1; number <= 60; ++number) {
      const UtmZone zone{number, hemisphere};
      std::string name = UtmName(zone);
      if (wanted(name, "")) found.push_back({std::move(name), UtmDefinition(zone)});
    }
  }
}

std::optional<NamedSystem> FindIn(std::string_view bytes, std::string_view name) {
  while (const auto line = TakeLine(bytes)) {
    const auto system = ReadCatalogueLine(*line);
    if (system && EqualsIgnoringCase(system->name, name)) {
      return NamedSystem{std::string(system->name), std::string(system->definition)};
    }
  }
  return std::nullopt;
}

}  // namespace

bool HasEveryWord(std::string_view name, std::string_view words) {
  while (!(words = WithoutLeadingBlanks(words)).empty()) {
    const std::string_view word = words.substr(0, words.find(' '));
    if (!Contains(name, word)) return false;
    words.remove_prefix(word.size());
  }
  return true;
}

SystemChoice ReadSystemChoice(std::string_view text) {
  const std::size_t at = text.find(kGeoidKey);
  if (at == std::string_view::npos) return {std::string(text), ""};
  const std::string_view geoid = text.substr(at + kGeoidKey.size());
  return {std::string(text.substr(0, at)), geoid == kGeoidOff ? "" : std::string(geoid)};
}

std::string WriteSystemChoice(const SystemChoice& choice) {
  std::string text = choice.name;
  text += kGeoidKey;
  text += choice.geoid.empty() ? std::string(kGeoidOff) : choice.geoid;
  return text;
}

SystemCatalogue::SystemCatalogue(FileSystem& files, std::string data_folder)
    : files_(&files), data_folder_(std::move(data_folder)) {}

const SystemCatalogue::Loaded& SystemCatalogue::Files() const {
  if (!loaded_) {
    Loaded loaded;
    if (files_) {
      if (!LoadFileBytes(*files_, UserPath(), loaded.user).ok()) loaded.user = {};
      if (!LoadFileBytes(*files_, PredefinedPath(), loaded.predefined).ok()) loaded.predefined = {};
    }
    loaded_ = std::move(loaded);
  }
  return *loaded_;
}

std::vector<NamedSystem> SystemCatalogue::Search(std::string_view part) const {
  part = WithoutOuterBlanks(part);
  const Loaded& files = Files();
  const auto search = [&](const auto& wanted) {
    std::vector<NamedSystem> found;
    Collect(files.user.view(), wanted, found);
    Collect(files.predefined.view(), wanted, found);
    if (files.predefined.view().empty()) CollectUtm(wanted, found);
    return found;
  };
  if (const std::string authority = AuthorityOf(part); !authority.empty()) {
    return search([&](std::string_view, std::string_view definition) {
      return definition.find(authority) != std::string_view::npos;
    });
  }
  auto found =
      search([&](std::string_view name, std::string_view) { return Contains(name, part); });
  if (!found.empty()) return found;
  return search([&](std::string_view name, std::string_view) { return HasEveryWord(name, part); });
}

std::optional<NamedSystem> SystemCatalogue::Find(std::string_view name) const {
  const SystemChoice choice = ReadSystemChoice(name);
  if (auto own = FindIn(Files().user.view(), choice.name)) return own;
  if (auto predefined = FindIn(Files().predefined.view(), choice.name)) return predefined;
  const auto zone = UtmZoneOf(choice.name);
  if (!zone) return std::nullopt;
  return NamedSystem{UtmName(*zone), UtmDefinition(*zone)};
}

std::vector<NamedSystem> SystemCatalogue::UserSystems() const {
  return ReadCatalogue(Files().user.view());
}

// Reads the user's file as it stands now, edits its bytes and replaces it.
template <typename Edit>
CatalogueResult SystemCatalogue::EditUserFile(const Edit& edit) {
  if (!files_) return CatalogueResult::FileFailed;
  std::string bytes;
  file_status_ = ReadWholeFile(*files_, UserPath(), kLargestFile, bytes);
  if (file_status_.not_found()) bytes.clear();
  if (!file_status_.ok() && !file_status_.not_found()) return CatalogueResult::FileFailed;
  const CatalogueResult result = edit(bytes);
  if (result != CatalogueResult::Done) return result;
  file_status_ = ReplaceWholeFile(*files_, UserPath(), bytes);
  loaded_.reset();
  return file_status_.ok() ? CatalogueResult::Done : CatalogueResult::FileFailed;
}

CatalogueResult SystemCatalogue::Add(std::string_view name, std::string_view definition) {
  return EditUserFile([&](std::string& bytes) { return AddToCatalogue(bytes, name, definition); });
}

CatalogueResult SystemCatalogue::AddAll(const std::vector<NamedSystem>& systems,
                                        std::vector<CatalogueResult>& results) {
  return EditUserFile([&](std::string& bytes) {
    results.clear();
    bool added = false;
    for (const NamedSystem& system : systems) {
      results.push_back(AddToCatalogue(bytes, system.name, system.definition));
      added = added || results.back() == CatalogueResult::Done;
    }
    return added ? CatalogueResult::Done : CatalogueResult::NotFound;
  });
}

CatalogueResult SystemCatalogue::Rename(std::string_view name, std::string_view new_name) {
  return EditUserFile([&](std::string& bytes) { return RenameInCatalogue(bytes, name, new_name); });
}

CatalogueResult SystemCatalogue::Remove(std::string_view name) {
  return EditUserFile([&](std::string& bytes) { return RemoveFromCatalogue(bytes, name); });
}

}  // namespace tarvex

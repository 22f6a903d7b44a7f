#include "coordsys/catalogue/system_catalogue.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "coordsys/catalogue/utm_zones.h"
#include "coordsys/coordsys_texts.h"
#include "core/text/number_text.h"
#include "core/text/string_table.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr std::string_view kGeoidKey = ",GEOID=";
constexpr std::string_view kGeoidOff = "OFF";
constexpr std::uint64_t kLargestFile = 256u << 20;

bool Contains(std::string_view text, std::string_view part) {
  return FindIgnoringCase(text, part) != std::string_view::npos;
}

// `AUTHORITY["EPSG","32633"]` for "EPSG:32633", "EPSG 32633" and "32633"; empty for anything else.
std::string AuthorityOf(std::string_view part) {
  constexpr std::string_view kPrefix = "EPSG";
  if (EqualsIgnoringCase(part.substr(0, kPrefix.size()), kPrefix)) {
    part.remove_prefix(kPrefix.size());
    while (part.starts_with(':') || part.starts_with(' ')) part.remove_prefix(1);
  }
  const bool digits = !part.empty() && std::all_of(part.begin(), part.end(), IsDigit);
  const auto code = digits ? ParseInteger(part) : std::nullopt;
  return code ? R"(AUTHORITY["EPSG",")" + std::to_string(*code) + R"("])" : "";
}

// True when the authority is the projected system's own, not its unit's or its datum's.
bool IsCode(std::string_view definition, std::string_view authority) {
  const std::size_t at = definition.find(authority);
  if (at == std::string_view::npos) return false;
  const std::string_view behind = definition.substr(at + authority.size());
  return behind == "]" || behind.starts_with("],VERT_CS");
}

// True when the word begins somewhere in the text, at the start of a word of it.
bool HasWordStart(std::string_view text, std::string_view word) {
  for (std::size_t from = 0; from < text.size();) {
    const std::size_t at = FindIgnoringCase(text.substr(from), word);
    if (at == std::string_view::npos) return false;
    const std::size_t place = from + at;
    if (place == 0 || text[place - 1] == ' ' || text[place - 1] == '(') return true;
    from = place + 1;
  }
  return false;
}

// True when every word is in the name or, unless it is a number, in the area, and one of them only
// there: "switzerland", "norway zone 32".
bool AreaHelps(const CatalogueLine& system, std::string_view words) {
  bool helped = false;
  while (!(words = WithoutLeadingBlanks(words)).empty()) {
    const std::string_view word = words.substr(0, words.find(' '));
    words.remove_prefix(word.size());
    if (Contains(system.name, word)) continue;
    if (IsDigit(word[0]) || !HasWordStart(system.area, word)) return false;
    helped = true;
  }
  return helped;
}

// What a search finds, sorted by why: one pass over the lines, which looks at a system's area only
// where its name does not say all.
class SystemSearch {
 public:
  explicit SystemSearch(std::string_view part)
      : part_(part), firstWord_(part.substr(0, part.find(' '))), authority_(AuthorityOf(part)) {}

  // Returns how many systems there are in all.
  std::size_t Take(std::string_view bytes) {
    std::size_t systems = 0;
    while (const auto line = TakeLine(bytes)) {
      const auto system = ReadCatalogueLine(*line);
      if (!system) continue;
      ++systems;
      Take(*system);
    }
    return systems;
  }

  void TakeUtm() {
    for (const Hemisphere hemisphere : {Hemisphere::North, Hemisphere::South}) {
      for (int number = 1; number <= 60; ++number) {
        const UtmZone zone{number, hemisphere};
        const std::string name = UtmName(zone);
        const std::string definition = UtmDefinition(zone);
        Take(CatalogueLine{name, definition});
      }
    }
  }

  std::vector<NamedSystem> Found() {
    std::vector<NamedSystem> found = std::move(byCode_);
    std::move(byName_.begin(), byName_.end(), std::back_inserter(found));
    const bool named = !found.empty();
    for (ByWords& other : byWords_) {
      if (other.areaHelps || !named) found.push_back(std::move(other.system));
    }
    return found;
  }

 private:
  struct ByWords {
    NamedSystem system;
    bool areaHelps;
  };

  void Take(const CatalogueLine& system) {
    // A name without the first word has neither the part nor every word of it.
    const bool begins = Contains(system.name, firstWord_);
    if (!authority_.empty() && IsCode(system.definition, authority_)) {
      byCode_.push_back(SystemOf(system));
    } else if (begins && Contains(system.name, part_)) {
      byName_.push_back(SystemOf(system));
    } else if (!system.area.empty() && AreaHelps(system, part_)) {
      byWords_.push_back({SystemOf(system), true});
    } else if (begins && HasEveryWord(system.name, part_)) {
      byWords_.push_back({SystemOf(system), false});
    }
  }

  std::string_view part_;
  std::string_view firstWord_;
  std::string authority_;
  std::vector<NamedSystem> byCode_;
  std::vector<NamedSystem> byName_;
  std::vector<ByWords> byWords_;  // of the area, or of the name where no name contains them all
};

std::optional<NamedSystem> FindIn(std::string_view bytes, std::string_view name) {
  while (const auto line = TakeLine(bytes)) {
    const auto system = ReadCatalogueLine(*line);
    if (system && EqualsIgnoringCase(system->name, name)) return SystemOf(*system);
  }
  return std::nullopt;
}

std::optional<NamedSystem> FindByCode(std::string_view bytes, std::string_view authority) {
  while (const auto line = TakeLine(bytes)) {
    const auto system = ReadCatalogueLine(*line);
    if (system && IsCode(system->definition, authority)) return SystemOf(*system);
  }
  return std::nullopt;
}

std::string Unreadable(const std::string& path, const FileStatus& status) {
  return Strings().Text(kTextCatalogueNotRead, {path, status.Text()});
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
  const std::size_t at = FindIgnoringCase(text, kGeoidKey);
  if (at == std::string_view::npos) return {std::string(text), ""};
  const std::string_view geoid = text.substr(at + kGeoidKey.size());
  const bool off = EqualsIgnoringCase(geoid, kGeoidOff);
  return {std::string(text.substr(0, at)), off ? "" : std::string(geoid)};
}

std::string WriteSystemChoice(const SystemChoice& choice) {
  std::string text = choice.name;
  text += kGeoidKey;
  text += choice.geoid.empty() ? std::string(kGeoidOff) : choice.geoid;
  return text;
}

SystemCatalogue::SystemCatalogue(FileSystem& files, std::string dataFolder)
    : files_(&files), dataFolder_(std::move(dataFolder)) {}

const SystemCatalogue::Loaded& SystemCatalogue::Files() const {
  if (!loaded_) {
    Loaded loaded;
    if (files_) {
      const auto load = [&](const std::string& path, FileBytes& bytes) {
        const FileStatus status = LoadFileBytes(*files_, path, bytes);
        if (status.ok()) return;
        bytes = {};
        if (!status.notFound()) loaded.problems.push_back(Unreadable(path, status));
      };
      load(UserPath(), loaded.user);
      load(PredefinedPath(), loaded.predefined);
    }
    loaded_ = std::move(loaded);
  }
  return *loaded_;
}

std::vector<NamedSystem> SystemCatalogue::Search(std::string_view part) const {
  SystemSearch search(WithoutOuterBlanks(part));
  search.Take(Files().user.view());
  if (search.Take(Files().predefined.view()) == 0) search.TakeUtm();
  return search.Found();
}

std::optional<NamedSystem> SystemCatalogue::Find(std::string_view name) const {
  const SystemChoice choice = ReadSystemChoice(name);
  if (auto own = FindIn(Files().user.view(), choice.name)) return own;
  if (auto predefined = FindIn(Files().predefined.view(), choice.name)) return predefined;
  if (const std::string authority = AuthorityOf(WithoutOuterBlanks(choice.name));
      !authority.empty()) {
    if (auto own = FindByCode(Files().user.view(), authority)) return own;
    return FindByCode(Files().predefined.view(), authority);
  }
  const auto zone = UtmZoneOf(choice.name);
  if (!zone) return std::nullopt;
  return NamedSystem{UtmName(*zone), UtmDefinition(*zone), ""};
}

std::vector<NamedSystem> SystemCatalogue::UserSystems() const {
  return ReadCatalogue(Files().user.view());
}

// Reads the user's file as it is now, edits its bytes and replaces it; another program that edits
// it meanwhile waits for the lock.
template <typename Edit>
CatalogueResult SystemCatalogue::EditUserFile(const Edit& edit) {
  if (!files_) return CatalogueResult::FileFailed;
  std::unique_ptr<File> file;
  fileStatus_ = OpenLocked(*files_, UserPath(), FileAccess::CreateOrKeep, file);
  std::string bytes;
  if (fileStatus_.ok()) fileStatus_ = ReadWholeFile(*files_, UserPath(), kLargestFile, bytes);
  if (!fileStatus_.ok()) return CatalogueResult::FileFailed;
  const CatalogueResult result = edit(bytes);
  if (result != CatalogueResult::Done) return result;
  fileStatus_ = ReplaceWholeFile(*files_, UserPath(), bytes, file);
  loaded_.reset();
  return fileStatus_.ok() ? CatalogueResult::Done : CatalogueResult::FileFailed;
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

CatalogueResult SystemCatalogue::Rename(std::string_view name, std::string_view newName) {
  return EditUserFile([&](std::string& bytes) { return RenameInCatalogue(bytes, name, newName); });
}

CatalogueResult SystemCatalogue::Remove(std::string_view name) {
  return EditUserFile([&](std::string& bytes) { return RemoveFromCatalogue(bytes, name); });
}

}  // namespace tarvex

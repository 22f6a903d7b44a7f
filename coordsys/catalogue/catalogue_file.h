// Catalogue files (.csl, .sys): one system a line, its name, a tab, its definition text and, behind
// another tab, the area where it is used; UTF-8.
// Lines that begin with # are comments. docs/formats/catalogue.md describes the form.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarvex {

struct NamedSystem {
  std::string name;
  std::string definition;
  std::string area =
      {};  ///< where it is used, in words; empty when the name says it or it is not known

  bool operator==(const NamedSystem&) const = default;
};

/// A line's system, as views into it; nothing for a comment, an empty line or one without a tab,
/// name or definition, and for a name with control characters.
struct CatalogueLine {
  std::string_view name;
  std::string_view definition;
  std::string_view area = {};
};
std::optional<CatalogueLine> ReadCatalogueLine(std::string_view line);

/// The line's values as a system of their own.
NamedSystem SystemOf(const CatalogueLine& line);

/// All systems of a file, in its order. `skipped` counts the lines that are neither comment, nor
/// empty, nor a system.
std::vector<NamedSystem> ReadCatalogue(std::string_view bytes, std::size_t* skipped = nullptr);

/// False for a name that a catalogue cannot hold: empty, longer than 200 bytes, with a control
/// character, a leading # or blank, or the words ",GEOID=" in any letter case.
bool IsCatalogueName(std::string_view name);

enum class [[nodiscard]] CatalogueResult : int {
  Done = 1,
  NotFound = 0,
  NameTaken = -1,
  BadName = -2,
  BadDefinition = -3,  ///< empty, or longer than a reader takes
  FileFailed = -4,     ///< the file cannot be read or written; it is as it was
};

/// The edits of a catalogue's bytes. Every other line, comments included, stays as it is; `bytes`
/// changes only when the result is Done.
CatalogueResult AddToCatalogue(std::string& bytes, std::string_view name,
                               std::string_view definition);
CatalogueResult RenameInCatalogue(std::string& bytes, std::string_view name,
                                  std::string_view newName);
CatalogueResult RemoveFromCatalogue(std::string& bytes, std::string_view name);

/// A result in a sentence.
std::string CatalogueText(CatalogueResult result);

}  // namespace tarvex

// The named coordinate systems a job can choose from: the user's own ("%starvex.csl"), the
// predefined ones ("%sPredef1.csl"), both in the program's data folder, and the UTM zones that are
// built in. Names are paths of parts joined by "/": country or region, datum, zone.
//
// A chosen name may carry the geoid setting ",GEOID=FILE" or ",GEOID=OFF" behind it.
//
// Files are read when something is first asked, not before, and searched as they lie: a few
// milliseconds for thousands of systems.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "coordsys/catalogue/catalogue_file.h"
#include "platform/file.h"
#include "platform/file_bytes.h"

namespace tarvex {

/// A name without its geoid setting, and the setting: the text after "GEOID=", empty when there is
/// none or it is OFF, in any letter case.
struct SystemChoice {
  std::string name;
  std::string geoid;

  bool operator==(const SystemChoice&) const = default;
};

SystemChoice ReadSystemChoice(std::string_view text);
/// The name with ",GEOID=FILE", or ",GEOID=OFF" for an empty geoid.
std::string WriteSystemChoice(const SystemChoice& choice);

/// True when the name contains every word of `words`, letter case ignored; so does any name of
/// none.
bool HasEveryWord(std::string_view name, std::string_view words);

class SystemCatalogue {
 public:
  /// Only the systems built in.
  SystemCatalogue() = default;
  /// `dataFolder` ends with its separator; a file that is not there holds no systems.
  SystemCatalogue(FileSystem& files, std::string dataFolder);

  /// All systems whose name contains `part`, letter case ignored, and those for which the area
  /// where they are used says a word that their name does not ("switzerland"); where no name
  /// contains it, also those whose name contains every word of it. "EPSG:32633" and "32633" find by
  /// code. All systems for an empty part. The user's come first in each kind.
  std::vector<NamedSystem> Search(std::string_view part) const;

  /// The system of a full name, letter case ignored, or of an EPSG code; a geoid setting behind it
  /// is passed over. A user's system hides a predefined one of the same name or code.
  std::optional<NamedSystem> Find(std::string_view name) const;

  /// The user's own systems: what the catalogue screen lists on opening.
  std::vector<NamedSystem> UserSystems() const;

  /// A sentence for each catalogue that is there but cannot be read; its systems are missing.
  const std::vector<std::string>& Problems() const { return Files().problems; }

  /// Edits of the user's catalogue. The file is replaced whole: after a failure or a crash at any
  /// point it is the old one or the new one, and edits of several programs come one after the
  /// other. BadDefinition leaves what a definition says unchecked.
  CatalogueResult Add(std::string_view name, std::string_view definition);
  /// All of them in one edit of the file; `results` says what came of each. A system that the
  /// catalogue already holds under its name is NameTaken. FileFailed when nothing was changed.
  CatalogueResult AddAll(const std::vector<NamedSystem>& systems,
                         std::vector<CatalogueResult>& results);
  CatalogueResult Rename(std::string_view name, std::string_view newName);
  CatalogueResult Remove(std::string_view name);

  /// Why the last edit was FileFailed.
  const FileStatus& fileStatus() const { return fileStatus_; }

 private:
  struct Loaded {
    FileBytes user;
    FileBytes predefined;
    std::vector<std::string> problems;
  };

  std::string UserPath() const { return dataFolder_ + "tarvex.csl"; }
  std::string PredefinedPath() const { return dataFolder_ + "Predef1.csl"; }
  const Loaded& Files() const;
  template <typename Edit>
  CatalogueResult EditUserFile(const Edit& edit);

  FileSystem* files_ = nullptr;
  std::string dataFolder_;
  mutable std::optional<Loaded> loaded_;
  FileStatus fileStatus_;
};

}  // namespace tarvex

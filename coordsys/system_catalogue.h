// The named coordinate systems a job can choose from: those built in, those of the predefined
// catalogue and the user's own. Names are paths of parts joined by "/": country or region, datum,
// zone.
//
// A chosen name may carry the geoid setting ",GEOID=FILE" or ",GEOID=OFF" behind it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarvex {

struct NamedSystem {
  std::string name;
  std::string definition;

  bool operator==(const NamedSystem&) const = default;
};

/// A name without its geoid setting, and the setting: the text after "GEOID=", empty when there is
/// none or it is OFF.
struct SystemChoice {
  std::string name;
  std::string geoid;

  bool operator==(const SystemChoice&) const = default;
};

SystemChoice ReadSystemChoice(std::string_view text);
/// The name with ",GEOID=FILE", or ",GEOID=OFF" for an empty geoid.
std::string WriteSystemChoice(const SystemChoice& choice);

class SystemCatalogue {
 public:
  /// All systems whose name contains `part`, letter case ignored; all of them for an empty part.
  std::vector<NamedSystem> Search(std::string_view part) const;

  /// The system of a full name, letter case ignored; a geoid setting behind it is passed over.
  std::optional<NamedSystem> Find(std::string_view name) const;
};

}  // namespace tarvex

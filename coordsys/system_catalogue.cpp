#include "coordsys/system_catalogue.h"

#include "coordsys/utm_zones.h"
#include "core/text.h"

namespace tarvex {
namespace {

constexpr std::string_view kGeoidKey = ",GEOID=";
constexpr std::string_view kGeoidOff = "OFF";

}  // namespace

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

std::vector<NamedSystem> SystemCatalogue::Search(std::string_view part) const {
  std::vector<NamedSystem> found;
  for (const Hemisphere hemisphere : {Hemisphere::North, Hemisphere::South}) {
    for (int number = 1; number <= 60; ++number) {
      const UtmZone zone{number, hemisphere};
      std::string name = UtmName(zone);
      if (FindIgnoringCase(name, part) == std::string_view::npos) continue;
      found.push_back({std::move(name), UtmDefinition(zone)});
    }
  }
  return found;
}

std::optional<NamedSystem> SystemCatalogue::Find(std::string_view name) const {
  const SystemChoice choice = ReadSystemChoice(name);
  const auto zone = UtmZoneOf(choice.name);
  if (!zone) return std::nullopt;
  return NamedSystem{UtmName(*zone), UtmDefinition(*zone)};
}

}  // namespace tarvex

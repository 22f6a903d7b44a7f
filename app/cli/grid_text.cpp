#include "app/cli/grid_text.h"

#include <cmath>

#include "coordsys/national_grids.h"
#include "core/text/number_text.h"

namespace tarvex {
namespace {

struct KindText {
  const char* key;
  const char* words;
};

KindText TextOf(GridFileKind kind) {
  switch (kind) {
    case GridFileKind::SurfaceText:
      return {"surface-text", "shift grid over a plane, text"};
    case GridFileKind::SurfaceBinary:
      return {"surface-binary", "shift grid over a plane, binary"};
    case GridFileKind::British:
      return {"british", "one of the two parts of the British shift grid"};
    case GridFileKind::French:
      return {"french", "geocentric translations from NTF to RGF93"};
    case GridFileKind::Ntv2:
      return {"ntv2", "NTv2 shift grid over latitude and longitude"};
    case GridFileKind::Nadcon:
      return {"nadcon", "NADCON pair, NAD27 to NAD83"};
    case GridFileKind::Geoid:
      break;
  }
  return {"geoid", "geoid model"};
}

std::string NameOf(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

bool IsNadconName(const std::string& name) {
  const std::string base = name.substr(0, name.rfind('.'));
  for (const std::string_view known : kNadconGrids) {
    if (base == known) return true;
  }
  return false;
}

// What chooses the file when it lies in the data folder; empty when nothing does.
std::string ChosenBy(const std::string& name, GridFileKind kind) {
  switch (kind) {
    case GridFileKind::Ntv2:
      return "--datum-shift " + name;
    case GridFileKind::Geoid:
      return "--system \"NAME,GEOID=" + name + "\"";
    case GridFileKind::Nadcon:
      return IsNadconName(name) ? "NAD27 systems, from the folder NADConv" : "";
    default:
      break;
  }
  const NationalGrid* grid = NationalGridOfFile(name);
  if (!grid) return "";
  const std::string area(grid->area);
  if (grid->label.empty()) return "the projection Transverse_Mercator_OSTN02 (" + area + ")";
  const bool blank = grid->label.find(' ') != std::string_view::npos;
  const std::string quote = blank ? "\"" : "";
  return "--datum-shift " + quote + std::string(grid->label) + quote + " (" + area + ")";
}

// The names under which a file of this kind would be found.
std::string NamesThatWork(GridFileKind kind) {
  switch (kind) {
    case GridFileKind::British:
      return "ostn02_x.bin or ostn02_y.bin";
    case GridFileKind::French:
      return "gr3df97a.bin";
    case GridFileKind::Nadcon:
      return "conus, alaska, hawaii, prvi, stgeorge, stlrnc or stpaul";
    default:
      return "X2c.grd and Y2c.grd, HungarianEOV_d*.grd or Belgium72_d*.grd";
  }
}

std::string UseOf(const std::string& name, GridFileKind kind) {
  const std::string chosenBy = ChosenBy(name, kind);
  if (!chosenBy.empty()) return "chosen by " + chosenBy;
  return "chosen by nothing under this name; names that are looked for: " + NamesThatWork(kind);
}

std::string Range(double low, double high, double step, int decimals, const char* unit) {
  return FixedNumber(low, decimals) + " to " + FixedNumber(high, decimals) + unit + " every " +
         ShortestNumber(std::round(step * 1e9) / 1e9) + unit;
}

std::string PartText(const GridFilePart& part, bool degrees) {
  const GridGeometry& g = part.geometry;
  const int decimals = degrees ? 6 : 1;
  const char* unit = degrees ? " degrees" : " m";
  std::string text = "  ";
  if (!part.name.empty()) text += part.name + ": ";
  text += degrees ? "longitude " : "easting ";
  text += Range(g.firstX(), g.lastX(), g.stepX(), decimals, unit);
  text += degrees ? ", latitude " : ", northing ";
  text += Range(g.firstY(), g.lastY(), g.stepY(), decimals, unit);
  text += ", " + std::to_string(g.columns()) + " x " + std::to_string(g.rows()) + " nodes";
  if (!part.parent.empty()) text += ", inside " + part.parent;
  return text + "\n";
}

Json AxisJson(const char* name, double low, double high, double step, int nodes) {
  return {{"name", name}, {"low", low}, {"high", high}, {"step", step}, {"nodes", nodes}};
}

Json PartJson(const GridFilePart& part, bool degrees) {
  const GridGeometry& g = part.geometry;
  Json json = Json::EmptyObject();
  if (!part.name.empty()) json["name"] = part.name;
  if (!part.parent.empty()) json["parent"] = part.parent;
  json["unit"] = degrees ? "degrees" : "metres";
  json["first"] =
      AxisJson(degrees ? "longitude" : "easting", g.firstX(), g.lastX(), g.stepX(), g.columns());
  json["second"] =
      AxisJson(degrees ? "latitude" : "northing", g.firstY(), g.lastY(), g.stepY(), g.rows());
  return json;
}

}  // namespace

std::string GridFileText(const std::string& path, const GridFileInfo& info) {
  std::string text = path + ": " + TextOf(info.kind).words;
  if (!info.fromSystem.empty()) text += ", " + info.fromSystem + " to " + info.toSystem;
  text += "\n  " + UseOf(NameOf(path), info.kind);
  const bool isWgs84 = info.toSystem == "WGS84" || info.toSystem == "WGS 84";
  if (!info.toSystem.empty() && !isWgs84) {
    text += ", which takes " + info.toSystem + " for WGS84";
  }
  text += '\n';
  for (const GridFilePart& part : info.parts) text += PartText(part, info.inDegrees());
  return text;
}

Json GridFileJson(const std::string& path, const GridFileInfo& info) {
  const std::string chosenBy = ChosenBy(NameOf(path), info.kind);
  Json json = {{"file", path}, {"kind", TextOf(info.kind).key}};
  json["chosen_by"] = chosenBy.empty() ? Json() : Json(chosenBy);
  if (info.kind == GridFileKind::Ntv2) {
    json["from"] = info.fromSystem;
    json["to"] = info.toSystem;
  }
  json["grids"] = Json::EmptyList();
  for (const GridFilePart& part : info.parts) {
    json["grids"].Add(PartJson(part, info.inDegrees()));
  }
  return json;
}

}  // namespace tarvex

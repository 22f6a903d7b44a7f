// Any bytes as a template: it loads, keeps its text, and gives a section and catch points.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "roads/catch_point.h"
#include "roads/section.h"
#include "roads/stakeout.h"
#include "roads/template_file.h"
#include "roads/template_reader.h"
#include "roads/template_writer.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using tarvex::Side;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const tarvex::RoadTemplate section = tarvex::ReadTemplate(text);
  if (section.text != text) std::abort();
  for (const auto& super : {std::optional<tarvex::Superelevation>{},
                            std::optional<tarvex::Superelevation>{{6.0, -6.0}}}) {
    const tarvex::DesignSection design = tarvex::BuildSection(section, 100.0, super);
    const auto poly =
        tarvex::GroundLine::Polyline({{0, 99.0}, {10, 98.0}, {12, 103.0}, {40, 104.0}});
    for (const Side side : {Side::Left, Side::Right}) {
      (void)tarvex::FindCatchPoint(section, design, side, *poly);
      (void)tarvex::FindCatchPoint(section, design, side, tarvex::GroundLine::Plane(99.0, 0.1));
      (void)tarvex::NextSlopeStep(section, design, side, {8.0, 99.0}, tarvex::SlopeShot{7.0, 99.5});
    }
  }
  // From its fields: what is written is read again without a line that is not known.
  if (section.lineOutOfRange == 0) {
    const tarvex::RoadTemplate again = tarvex::ReadTemplate(tarvex::TemplateText(section));
    if (!again.notes.empty()) std::abort();
  }
  return 0;
}

// Writes a projection record as a definition text that reads back to the same record.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "coordsys/projections/projection_record.h"

namespace tarvex {

/// The definition on one line, a COMPD_CS when there is a compound name or a vertical datum. Every
/// number has the digits that read back to the same double; an ellipsoid of the built-in table is
/// written by its values and comes back as the user's own (code 999), its flattening to the last
/// bit but one at worst. In names " becomes ' and a comma a semicolon, which the form cannot hold.
/// A shift of zeros is written where the datum is WGS84; elsewhere zeros may mean that it is
/// not known, and TOWGS84 is left out.
///
/// Nothing when the projection type has no name, a number is not finite, or the text would be
/// longer than a reader takes.
std::optional<std::string> WriteDefinition(const ProjectionRecord& record, std::string_view name,
                                           std::string_view compoundName = {});

}  // namespace tarvex

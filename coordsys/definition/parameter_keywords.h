// The names of PARAMETER items and the field of the record that each sets.
#pragma once

#include <string_view>

#include "coordsys/projections/projection_record.h"

namespace tarvex {

/// Sets the field of `keyword` from the text of its number; a name that is not known sets none.
/// Returns whether it is known.
bool SetParameter(ProjectionRecord& record, std::string_view keyword, std::string_view number);

}  // namespace tarvex

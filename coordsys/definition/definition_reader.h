// Reads a definition text (COMPD_CS, PROJCS, DATUM, SPHEROID, TOWGS84, PROJECTION, PARAMETER,
// VERT_DATUM in brackets) into a projection record. docs/formats/definition.md describes the form.
//
// The reader never fails: what the text does not give, and everything after the point where a
// bracket, comma or quote is missing, keeps the value that the record had before. What a user must
// know about a text before trusting it is coordsys/definition/definition_check.h's to say.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "coordsys/message_box.h"
#include "coordsys/projections/projection_record.h"

namespace tarvex {

/// How much of a definition is read.
inline constexpr std::size_t kDefinitionLimit = 2048;

/// What a text says beside the record.
struct DefinitionFacts {
  std::string compoundName;  ///< of a COMPD_CS, else as it was
  /// The text says how its datum lies against WGS84 (TOWGS84), be it with zeros. Without it the
  /// record's shift is what it was before.
  bool givesShift = false;
};

/// Fills `record` and `facts` from the text. The text is matched as it is: line breaks and
/// blanks between its items belong to OneLineDefinition. An unknown projection name leaves the
/// projection type as it was and is reported through `messages`, unless that is null. Returns 1,
/// whatever the text gives.
int ReadDefinition(std::string_view text, ProjectionRecord& record, DefinitionFacts& facts,
                   MessageBox* messages);

/// A pasted text or a file as the reader takes it: without line breaks and blanks outside its
/// quotes, with square brackets for round ones, and with a semicolon for a comma in a name, where
/// the reader would take it for the name's end.
std::string OneLineDefinition(std::string_view text);

}  // namespace tarvex

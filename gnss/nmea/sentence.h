// Which sentence a line is, whether it arrived whole, and what reading one comes to.
#pragma once

#include <string_view>

#include "gnss/position/position_state.h"
#include "gnss/receivers/receiver_make.h"
#include "gnss/receivers/receiver_settings.h"

namespace tarvex {

enum class SentenceKind { Other, Gga, Gll, Gns, Ggk, Ggq, PtnlGgk, Gst, Gsa, Rre, Rd1 };

/// The kind of a line by its prefix ("$GPGGA,"). With `anyTalker` GGA, GLL, GNS, GST and GSA are
/// known behind any two letters.
SentenceKind KindOf(std::string_view line, bool anyTalker);

/// The sentence that ends a line: from its last '$' on, without the blanks and carriage returns
/// behind it. Receivers that send binary data between their sentences put no line end behind it.
std::string_view SentenceIn(std::string_view line);

/// Whether the sentence of a kind can carry the position.
bool CarriesPosition(SentenceKind kind);

/// Whether a checksum stands at the end of a line, and is right: the mark of a sentence that came
/// whole though its line end did not.
bool ChecksumStands(std::string_view line);

/// False when what follows the last '*' is not the exclusive-or of everything between '$' and it,
/// as two hexadecimal digits. A line without checksum passes.
bool ChecksumHolds(std::string_view line);

enum class [[nodiscard]] SentenceResult{
    Read,         ///< values taken, the position is not complete
    Position,     ///< the position is complete
    RanOut,       ///< the fields ended part-way; what was taken stays
    NoFix,        ///< the receiver says that it has no position
    InvalidData,  ///< two sentences run together
};

/// What the readers of sentences need to know about the receiver.
struct SentenceContext {
  const ReceiverSettings& settings;
  const ReceiverMake& make;
};

}  // namespace tarvex

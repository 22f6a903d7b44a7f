// Whether a sentence arrived whole in its line.
#pragma once

#include <string_view>

namespace tarvex {

/// The sentence that ends a line: from its last '$' on, without the blanks and carriage returns
/// behind it. Receivers that send binary data between their sentences put no line end behind it.
std::string_view SentenceIn(std::string_view line);

/// Whether a line ends in a checksum, and in the right one: the mark of a sentence that came whole
/// though its line end did not.
bool HasGoodChecksum(std::string_view line);

/// False when what follows the last '*' is not the exclusive-or of everything between '$' and it,
/// as two hexadecimal digits. A line without checksum passes.
bool ChecksumHolds(std::string_view line);

}  // namespace tarvex

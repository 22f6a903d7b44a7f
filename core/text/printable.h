// Text of other people (a caster, a receiver, a file) made fit to be shown: a terminal obeys
// control characters, so none of them is left in it. What goes into a file is made one line by
// OneLine (core/text/text.h) instead, which keeps every letter of whatever code page the text came
// in.
#pragma once

#include <string>
#include <string_view>

namespace tarvex {

/// `text` with every control character made a blank: those below 0x20 and 0x7F, and U+0080 to
/// U+009F, which some terminals obey as well. Line feeds (with a CR before them) and tabs stay. The
/// bytes 0x80 to 0x9F outside of UTF-8 characters become '?'; valid UTF-8 and any other byte pass.
std::string PrintableText(std::string_view text);

/// The same for what has to stay on one line: line ends and tabs become blanks as well.
std::string PrintableLine(std::string_view text);

/// True when PrintableText would change nothing of an ASCII text: most texts are, and this is
/// quick.
bool IsPlainText(std::string_view text);

}  // namespace tarvex

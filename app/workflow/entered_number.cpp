#include "app/workflow/entered_number.h"

#include <cmath>

#include "core/text/number_text.h"
#include "core/text/text.h"

namespace tarvex {

NumberEntry ReadNumberEntry(std::string_view text) {
  const std::string shown = "\"" + OneLine(text) + "\"";
  const auto value = ParseNumber(text);
  if (!value) return {.value = 0.0, .problem = shown + " is not a number"};
  if (std::fabs(*value) <= kLargestEntry) return {.value = *value, .problem = {}};
  return {.value = 0.0, .problem = shown + " is out of range: it goes to 1000000000 at most"};
}

}  // namespace tarvex

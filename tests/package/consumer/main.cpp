#include "core/units.h"  // its own
#include "tarvex/coordsys/calculator.h"
#include "tarvex/core/angle.h"
#include "tarvex/gnss/position_reader.h"

int main() {
  const tarvex::CTrgCalculator calculator;
  const bool no_system = calculator.State() == tarvex::CalculationResult::NoSystem;
  const bool has_text = !tarvex::ResultSentence(tarvex::GnssReadResult::NoFix).empty();
  return no_system && has_text && tarvex::PackedField(12.5, 4) == "12.3000" && kOwnUnits == 3 ? 0
                                                                                              : 1;
}

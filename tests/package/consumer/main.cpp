#include "core/units.h"  // its own
#include "tarvex/coordsys/chain/calculator.h"
#include "tarvex/core/angle.h"
#include "tarvex/gnss/position_reader.h"

int main() {
  const tarvex::CTrgCalculator calculator;
  const bool noSystem = calculator.State() == tarvex::CalculationResult::NoSystem;
  const bool hasText = !tarvex::ResultSentence(tarvex::GnssReadResult::NoFix).empty();
  return noSystem && hasText && tarvex::PackedField(12.5, 4) == "12.3000" && kOwnUnits == 3 ? 0 : 1;
}

#include "coordsys/run_messages.h"

#include "coordsys/coordsys_texts.h"
#include "core/text/string_table.h"

namespace tarvex {

void RunMessages::ShowOnce(int textNumber) {
  const std::lock_guard lock(mutex_);
  if (!shown_.insert(textNumber).second || box_ == nullptr) return;
  box_->Show(Strings().Text(kTextCoordinateSystem), Strings().Text(textNumber));
}

}  // namespace tarvex

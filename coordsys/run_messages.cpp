#include "coordsys/run_messages.h"

#include "core/string_table.h"

namespace tarvex {

void RunMessages::ShowOnce(int textNumber) {
  constexpr int kTitle = 141;
  const std::lock_guard lock(mutex_);
  if (!shown_.insert(textNumber).second || box_ == nullptr) return;
  box_->Show(Strings().Text(kTitle), Strings().Text(textNumber));
}

}  // namespace tarvex

#include "coordsys/run_messages.h"

#include "core/string_table.h"

namespace tarvex {

void RunMessages::ShowOnce(int text_number) {
  constexpr int kTitle = 141;
  const std::lock_guard lock(mutex_);
  if (!shown_.insert(text_number).second || box_ == nullptr) return;
  box_->Show(Strings().Text(kTitle), Strings().Text(text_number));
}

}  // namespace tarvex

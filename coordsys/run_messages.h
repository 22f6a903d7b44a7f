// Messages that are shown once in the program's run, however often their cause comes up. The
// program makes one of these and hands it to every calculator.
#pragma once

#include <mutex>
#include <set>

#include "coordsys/message_box.h"

namespace tarvex {

class RunMessages {
 public:
  /// `box` may be null and is not owned.
  explicit RunMessages(MessageBox* box) : box_(box) {}

  /// Shows a text of the string table under the title of the coordinate system, the first time.
  void ShowOnce(int textNumber);

 private:
  std::mutex mutex_;
  MessageBox* box_;
  std::set<int> shown_;
};

}  // namespace tarvex

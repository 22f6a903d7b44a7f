// How the coordinate system says something to the user that is no result of the call at hand. The
// program above hands one in; without one the call is silent.
#pragma once

#include <string_view>

namespace tarvex {

class MessageBox {
 public:
  virtual ~MessageBox() = default;
  virtual void Show(std::string_view title, std::string_view text) = 0;
};

}  // namespace tarvex

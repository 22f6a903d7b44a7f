// A caller that waits for a caster hears how far it is, and may cancel.
#pragma once

#include <string_view>

namespace tarvex {

class NtripProgress {
 public:
  virtual ~NtripProgress() = default;
  /// Non-zero when the user cancels. Called once a receive.
  virtual int Progress(int value, int minimum = 0, int elapsedS = 0) = 0;
  virtual void Status(std::string_view text) = 0;
};

/// Shows nothing and never cancels.
class NoProgress final : public NtripProgress {
 public:
  int Progress(int /*value*/, int /*minimum*/, int /*elapsedS*/) override { return 0; }
  void Status(std::string_view /*text*/) override {}
};

}  // namespace tarvex

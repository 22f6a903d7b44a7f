// The progress of a grid that loads or is packed, at the bottom of the terminal.
#pragma once

#include <string>

#include "app/cli/program.h"
#include "coordsys/grids/load_progress.h"

namespace tarvex {

class LoadBar final : public LoadProgress {
 public:
  explicit LoadBar(Console& console) : console_(console) {}

  void Show(std::string_view text, std::size_t done, std::size_t total) override {
    const std::size_t percent = total == 0 ? 100 : done * 100 / total;
    console_.ShowProgress(std::string(text) + " " + std::to_string(percent) + "%");
  }

 private:
  Console& console_;
};

}  // namespace tarvex

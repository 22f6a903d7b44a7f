#include "app/cli/input_blocks.h"

#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <utility>

namespace tarvex {
namespace {

std::string_view WithoutCarriageReturn(std::string_view line) {
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

}  // namespace

std::size_t ReadStandardInput(std::span<char> out) {
  std::fflush(stdout);
  const ssize_t got = ::read(STDIN_FILENO, out.data(), out.size());
  return got > 0 ? static_cast<std::size_t>(got) : 0;
}

InputBlocks::InputBlocks(ReadSome readSome) : readSome_(std::move(readSome)), bytes_(kBlock) {}

// The whole lines of what is held; what follows the last of them stays.
std::size_t InputBlocks::TakeLines(std::vector<std::string_view>& lines) {
  while (begin_ < end_) {
    const char* const start = bytes_.data() + begin_;
    const auto* const stop = static_cast<const char*>(std::memchr(start, '\n', end_ - begin_));
    if (!stop) break;
    const auto length = static_cast<std::size_t>(stop - start);
    if (!std::exchange(skipping_, false)) {
      lines.push_back(WithoutCarriageReturn({start, length}));
    }
    begin_ += length + 1;
  }
  return lines.size();
}

bool InputBlocks::Next(std::vector<std::string_view>& lines) {
  lines.clear();
  while (true) {
    std::memmove(bytes_.data(), bytes_.data() + begin_, end_ - begin_);
    end_ -= std::exchange(begin_, 0);
    const std::size_t got = readSome_(std::span(bytes_).subspan(end_));
    end_ += got;
    if (TakeLines(lines) > 0) return true;
    const bool full = end_ - begin_ == kBlock;
    if (got > 0 && !full) continue;
    const std::string_view rest(bytes_.data() + begin_, std::exchange(end_, 0) - begin_);
    begin_ = 0;
    const bool skipped = std::exchange(skipping_, full);
    if (skipped || (rest.empty() && got == 0)) {
      if (got == 0) return false;
      continue;
    }
    lines.push_back(WithoutCarriageReturn(rest));
    return true;
  }
}

}  // namespace tarvex

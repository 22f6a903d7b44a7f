// Random numbers of a test. TARVEX_SEED=n in the environment gives those of n, TARVEX_SEED=new
// other ones in each run; a failure tells the seed it was found with.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <random>
#include <source_location>
#include <string>
#include <string_view>

namespace tarvex {

class RandomNumbers : public std::mt19937_64 {
 public:
  /// The same numbers in every run, unless other ones are asked for.
  explicit RandomNumbers(std::uint64_t usual,
                         std::source_location where = std::source_location::current())
      : RandomNumbers(where, Wanted(usual)) {}
  /// Other numbers in every run, unless some are asked for.
  explicit RandomNumbers(std::source_location where = std::source_location::current())
      : RandomNumbers(where, Wanted(std::random_device{}())) {}

 private:
  RandomNumbers(std::source_location where, std::uint64_t seed)
      : std::mt19937_64(seed),
        trace_(where.file_name(), static_cast<int>(where.line()),
               "again with TARVEX_SEED=" + std::to_string(seed)) {}

  static std::uint64_t Wanted(std::uint64_t usual) {
    const char* const given = std::getenv("TARVEX_SEED");
    if (given == nullptr || *given == '\0') return usual;
    if (std::string_view(given) == "new") return std::random_device{}();
    return std::strtoull(given, nullptr, 10);
  }

  testing::ScopedTrace trace_;
};

}  // namespace tarvex

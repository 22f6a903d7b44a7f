// What making or reading something gives: the value, or why there is none. The one way in which the
// rooms say so among themselves; results with numbers that are fixed for the system stay enums of
// their own.
//
//   Outcome<Profile, ProfileFault> made = Profile::Make(points);
//   if (!made) return Tell(made.failure());
//   Use(*made);
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <variant>

namespace tarvex {

/// Why there is no value.
template <typename Code>
struct Failure {
  Code code;
  std::size_t place = 0;  ///< a line, an element, a point: the code says of what
  std::string text = {};  ///< what the code is about, where it needs words
};

template <typename T, typename Code>
class [[nodiscard]] Outcome {
 public:
  Outcome(T value) : state_(std::move(value)) {}                  // NOLINT(*-explicit-*)
  Outcome(Failure<Code> failure) : state_(std::move(failure)) {}  // NOLINT(*-explicit-*)

  explicit operator bool() const { return std::holds_alternative<T>(state_); }

  /// The value; to be asked for only where there is one.
  T& operator*() & { return *std::get_if<T>(&state_); }
  const T& operator*() const& { return *std::get_if<T>(&state_); }
  T&& operator*() && { return std::move(*std::get_if<T>(&state_)); }
  T* operator->() { return std::get_if<T>(&state_); }
  const T* operator->() const { return std::get_if<T>(&state_); }
  /// The same, which ends the program where there is none.
  T&& value() && { return std::get<T>(std::move(state_)); }

  /// Why there is no value; to be asked for only where there is none.
  const Failure<Code>& failure() const { return *std::get_if<Failure<Code>>(&state_); }

 private:
  std::variant<T, Failure<Code>> state_;
};

/// The code of a failure that its text alone explains: a sentence for the person.
enum class Problem { Told };

/// A value, or a sentence that says why there is none.
template <typename T>
using OrProblem = Outcome<T, Problem>;

inline Failure<Problem> ProblemOf(std::string sentence) {
  return {.code = Problem::Told, .text = std::move(sentence)};
}

}  // namespace tarvex

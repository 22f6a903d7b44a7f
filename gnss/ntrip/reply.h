// What a caster answers: the marks that tell its replies apart, found also where two receives meet,
// and the bytes behind the answer, which are the stream already.
#pragma once

#include <string>
#include <string_view>

namespace tarvex {

/// The bytes of the last receive with the end of the one before in front, so that a mark that was
/// split between them is found.
class ReplyWindow {
 public:
  /// Replaces the bytes, keeping the last few of those before.
  void Take(std::string_view received);
  bool Holds(std::string_view mark) const { return bytes_.find(mark) != std::string::npos; }
  std::string_view bytes() const { return bytes_; }
  /// What follows the line that holds the mark; everything behind the mark when the line has
  /// not ended yet.
  std::string_view Behind(std::string_view mark) const;

 private:
  std::string bytes_;
};

/// What follows "ICY 200 OK": the rest of its line, header lines that some casters add, a blank
/// line that most leave out, then the stream. Data may begin anywhere; no byte of it is lost.
class StreamStart {
 public:
  /// Appends to `stream` what of `received` belongs to the stream.
  void Feed(std::string_view received, std::string& stream);
  /// No header at all: the device opened the stream itself.
  void Skip() { done_ = true; }
  /// The header is over: all bytes from now on are stream.
  bool done() const { return done_; }

 private:
  void Decide(std::string& stream);
  bool CouldBecomeHeader() const;
  bool LineIsHeader() const;

  std::string line_;
  bool first_ = true;  // still in the line of the answer itself
  bool done_ = false;
};

}  // namespace tarvex

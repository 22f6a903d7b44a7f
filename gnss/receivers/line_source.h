// Where the lines of a reading come from: the port itself, or the text that a stream-buffered make
// has delivered in passes.
#pragma once

#include <array>
#include <string_view>

#include "gnss/port/line_reader.h"
#include "gnss/receivers/gnss_connection.h"
#include "gnss/receivers/receiver_make.h"

namespace tarvex {

class LineSource {
 public:
  LineSource(GnssConnection& connection, const ReceiverMake& make, const ReadDeadline& deadline)
      : connection_(connection), make_(make), deadline_(deadline) {}

  enum class [[nodiscard]] Outcome {
    Line,
    Nothing,    ///< no whole line yet, or one that was cut; ask again
    Failed,     ///< no line within a second, or the port failed
    Abandoned,  ///< asked to stop while much is waiting
    OutOfTime,  ///< the deadline has passed
  };

  /// A line stays valid until the next call. The connection's listener hears it first.
  Outcome Next(std::string_view& line);

  /// Leaves a line to the next reading.
  void GiveBack(std::string_view line) { connection_.returnedLine = line; }

  /// The next whole line of the stream text that starts with `prefix`, looked up without taking it.
  std::string_view LookAhead(std::string_view prefix) const;

 private:
  Outcome Read(std::string_view& line);
  bool Returned(std::string_view& line);
  Outcome FromPort(std::string_view& line);
  Outcome FromStream(std::string_view& line);
  Outcome StreamPass();

  // Binary data between the sentences has few line ends.
  static constexpr std::size_t kLineCapacity = 4096;

  GnssConnection& connection_;
  const ReceiverMake& make_;
  const ReadDeadline deadline_;
  std::array<char, kLineCapacity> buffer_;
};

}  // namespace tarvex

// What a caster says about itself and its streams: the CAS and STR lines of a source table. The
// system's own list of known casters and streams has the same lines with a few fields more.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/text/fixed_text.h"
#include "gnss/port/port_error.h"

namespace tarvex {

/// Where a line comes from: the fields of our own are read from our own list alone.
enum class RecordOrigin { Caster, OwnList };

struct CasterRecord {
  FixedText<32> host;
  FixedText<32> port;
  FixedText<64> identifier;
  FixedText<64> operatorName;
  bool nmea = false;  ///< the caster wants the rover's position
  FixedText<4> country;
  double latitude = 0.0;
  double longitude = 0.0;
  FixedText<64> fallbackHost;
  FixedText<32> fallbackPort;
  FixedText<32> ownText1;
  FixedText<32> ownText2;
  bool flag = false;

  /// The port as a number, by the leading-number rule.
  int PortNumber() const;
};

struct StreamRecord {
  FixedText<32> mountpoint;
  FixedText<32> identifier;
  FixedText<32> format;
  FixedText<32> formatDetails;
  std::int32_t carrier = 0;
  FixedText<32> navSystem;
  FixedText<32> network;
  FixedText<4> country;
  double latitude = 0.0;
  double longitude = 0.0;
  bool nmea = false;      ///< the stream needs the rover's GGA
  bool solution = false;  ///< network solution
  FixedText<32> generator;
  FixedText<32> compression;
  char authentication = '\0';
  bool fee = false;
  std::int32_t bitrate = 0;
  FixedText<32> misc;
  FixedText<32> ownText1;
  FixedText<32> ownText2;
  FixedText<32> ownText3;
  bool flag = false;
  std::int32_t formatCode = 47;  ///< CorrectionFormatCode of the format
};

/// One line, its line end taken off. NotARecord when it is no CAS line, NoHostOrPort when host or
/// port is empty; the record is then as it was. A failure is stored in `errors`.
PortError ParseCasterRecord(std::string_view line, RecordOrigin origin, CasterRecord& record,
                            LastErrorRecord& errors);
/// One line; NotARecord when it is no STR line.
/// A fee is 'Y' in a caster's line and 1 in one of ours.
PortError ParseStreamRecord(std::string_view line, RecordOrigin origin, StreamRecord& record,
                            LastErrorRecord& errors);

/// The lines of our own list, CR LF included. A stream without authentication character gets 'N'.
std::string CasterRecordLine(const CasterRecord& record);
std::string StreamRecordLine(const StreamRecord& record);
/// The line of a caster's table: without the fields of our own, the fee as 'Y' or 'N'.
std::string SourceTableLine(const StreamRecord& record);

/// "47.42N 9.65E Feldkirch, AUT"; longitudes beyond 180 degrees are shown west.
std::string StreamPositionText(const StreamRecord& record);

/// The code of a correction format: RTCM 2.1 36, 2.2 37, 2.3 38, 3 39, other RTCM 16; CMR+ 15,
/// CMR 12, RTCA 17, anything else 47.
int CorrectionFormatCode(std::string_view format);

}  // namespace tarvex

// The error numbers of ports and of the NTRIP client. 0 is success; every failure is stored in the
// last-error record (core/text/last_error.h) and returned. The texts are rows 3000 + number of the
// string table.
#pragma once

#include <string>

#include "core/text/last_error.h"

namespace tarvex {

enum class [[nodiscard]] PortError : int {
  None = 0,
  NoAnswer = 3,
  NotOpen = 5,
  ReadFailed = 6,
  WriteFailed = 7,
  ConfigureFailed = 9,
  QueueSizesFailed = 10,
  GetTimeoutsFailed = 11,
  SetTimeoutsFailed = 12,
  BytesWaitingFailed = 13,
  ClearErrorsFailed = 14,
  PurgeOutputFailed = 15,
  PurgeInputFailed = 16,
  FlushFailed = 17,
  BreakFailed = 18,
  NothingGiven = 19,  ///< no connection object, no caster, no stream, no protocol
  FileNotCreated = 23,
  OpenFailed = 24,      ///< argument: the port name
  FewerBytesRead = 25,  ///< arguments: received, wanted, time-out in ms
  System = 29,          ///< argument: the system's message
  NotARecord = 32,
  NoHostOrPort = 39,
  FirstReceiveFailed = 40,
  Disconnected = 83,
  NotAuthorized = 139,
  Cancelled = 233,
  CasterNotOpened = 281,
  BasesNotLoaded = 367,
  MountpointNotConnected = 368,
  MountpointUnknown = 378,
  TableUnreadable = 395,
  CasterSpeaksTls = 396,
  CasterRefused = 397,   ///< argument: its answer
  NotCorrections = 398,  ///< a web page
  TableTooLarge = 399,
};

/// Stores the error and returns it.
PortError Report(LastErrorRecord& record, PortError error, std::vector<std::string> arguments = {});

/// The sentence for people: what failed, and with which arguments.
std::string ErrorSentence(const LastError& error);

/// The sentences of everything in the record, oldest first, one blank between them.
std::string ErrorSentences(const LastErrorRecord& record);

}  // namespace tarvex

// Why a connection by TLS was not made, and its telling in words.
#pragma once

#include <string>

namespace tarvex {

enum class TlsFailure {
  NoLibrary,         ///< detail: the system's words
  NotTls,            ///< a plain server; detail: what it said
  Cut,               ///< the far end closed during the handshake
  NoAnswer,          ///< to the handshake
  AuthorityFile,     ///< cannot be used; detail: its name and why
  WrongName,         ///< detail: the names that the certificate is for
  Expired,           ///< detail: the day
  NotYetValid,       ///< detail: the day
  SelfSigned,        ///< detail: who it says it is
  UnknownAuthority,  ///< detail: who issued the certificate
  Certificate,       ///< anything else about it; detail: what
  Protocol,          ///< detail: what the protocol's library says
};

/// A clause for behind "cannot be reached: ", without an end.
std::string TlsFailureText(TlsFailure failure, const std::string& detail, const std::string& host);

}  // namespace tarvex

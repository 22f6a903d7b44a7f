#include "tls/tls_failure.h"

#include "core/text/printable.h"
#include "core/text/string_table.h"
#include "tls/tls_texts.h"

namespace tarvex {

std::string TlsFailureText(TlsFailure failure, const std::string& detail, const std::string& host) {
  static_assert(kTextFirstTlsFailure + static_cast<int>(TlsFailure::Protocol) ==
                kTextLastTlsFailure);
  return Strings().Text(kTextFirstTlsFailure + static_cast<int>(failure),
                        {PrintableLine(detail), host});
}

}  // namespace tarvex

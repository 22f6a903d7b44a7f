// Numbers of the string table that the tls room uses.
#pragma once

namespace tarvex {

inline constexpr int kTextFirstTlsFailure = 3340;  ///< run: in the order of TlsFailure
inline constexpr int kTextLastTlsFailure = 3351;

}  // namespace tarvex

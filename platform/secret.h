// Passwords come from places that other users of the machine cannot look into.
#pragma once

#include <string>

namespace tarvex {

enum class [[nodiscard]] SecretResult {
  Found,
  Missing,      ///< no such file, or no person to ask
  OpenToOthers  ///< the file can be read by other users
};

/// The first line of a file that its owner alone may read (mode 0600 or 0400).
SecretResult ReadSecretFile(const std::string& path, std::string& secret);

/// Asks the person at the terminal, without showing what is typed.
SecretResult AskSecret(const std::string& question, std::string& secret);

}  // namespace tarvex

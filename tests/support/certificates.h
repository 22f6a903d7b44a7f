// Certificates of a trial authority, made anew by the openssl program when a test needs them.
#pragma once

#include <sys/wait.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/support/quiet_process.h"
#include "tests/support/scratch_folder.h"

namespace tarvex {

class Certificates {
 public:
  /// Makes the authority: Path("authority.pem"). False when that did not work.
  bool MakeAuthority() { return MakeSelfSigned("authority", "Trial Authority", "CA:TRUE"); }

  /// Path(name + ".pem") and Path(name + ".key"): for these names ("DNS:localhost,IP:127.0.0.1"),
  /// signed by the authority, valid from now on for `days`, which may be negative.
  bool Make(const std::string& name, const std::string& names, int days) {
    return OpenSsl({"req", "-newkey", "ec", "-pkeyopt", kCurve, "-nodes", "-subj", "/CN=" + name,
                    "-addext", "subjectAltName=" + names, "-keyout", Path(name + ".key"), "-out",
                    Path(name + ".csr")}) &&
           OpenSsl({"x509", "-req", "-in", Path(name + ".csr"), "-CA", Path("authority.pem"),
                    "-CAkey", Path("authority.key"), "-copy_extensions", "copy", "-days",
                    std::to_string(days), "-out", Path(name + ".pem")});
  }

  /// The same, signed by itself, for localhost.
  bool MakeSelfSigned(const std::string& name, const std::string& commonName,
                      const std::string& constraints = "CA:FALSE") {
    return OpenSsl({"req", "-x509", "-newkey", "ec", "-pkeyopt", kCurve, "-nodes", "-days", "2",
                    "-subj", "/CN=" + commonName, "-addext", "basicConstraints=" + constraints,
                    "-addext", "subjectAltName=DNS:localhost,IP:127.0.0.1", "-keyout",
                    Path(name + ".key"), "-out", Path(name + ".pem")});
  }

  std::string Path(const std::string& name) const { return folder_.Path(name); }

 private:
  static constexpr const char* kCurve = "ec_paramgen_curve:prime256v1";

  static bool OpenSsl(std::vector<std::string> words) {
    words.insert(words.begin(), "openssl");
    int status = -1;
    return ::waitpid(StartQuietly(std::move(words)), &status, 0) > 0 && status == 0;
  }

  ScratchFolder folder_;
};

}  // namespace tarvex

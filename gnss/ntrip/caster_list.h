// The casters and streams that are known, and the caster that is in use.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/text/fixed_text.h"
#include "gnss/ntrip/records.h"
#include "platform/file.h"

namespace tarvex {

/// Of the requests. A caster that does not know version 2 is asked again as one of version 1.
enum class NtripVersion { One, Two };

/// How to reach a caster. The password is never part of an error, a status or a log.
struct CasterLogin {
  FixedText<128> host = {};
  std::string port = "2101";
  std::string user = {};
  std::string password = {};
  NtripVersion version = NtripVersion::One;
  bool encrypted = false;          ///< by TLS, and never without
  std::string authorityFile = {};  ///< PEM: who may vouch for it; empty: the system's authorities
};

/// "caster.example:2101", "[::1]:2101".
std::string CasterName(const CasterLogin& caster);

class CasterList {
 public:
  std::optional<CasterLogin> current;
  std::vector<CasterRecord> casters = {};
  std::vector<StreamRecord> streams = {};

  /// A caster's table that was read to its end ("ENDSOURCETABLE"); without it streams may be
  /// missing.
  bool complete = false;

  /// Replaces casters and streams by those of a table file. Lines that are no records are left out,
  /// and so is a caster's last line when its end has not come; a table of more than kMostStreams
  /// streams is TableTooLarge, a file that cannot be read TableUnreadable. A caster without host or
  /// port is stored in `errors`, and left out.
  PortError ReadTable(FileSystem& files, const std::string& path, RecordOrigin origin,
                      LastErrorRecord& errors);

  /// The records as a list of our own.
  std::string Text() const;

  /// The stream of a mountpoint, compared as far as a record holds it; null when there is none. Of
  /// several with the same start one that needs the rover's position comes first.
  const StreamRecord* Find(std::string_view mountpoint) const;

  /// Up to `count` mountpoints that are written most like `mountpoint`, the most alike first.
  std::vector<std::string> MostAlike(std::string_view mountpoint, std::size_t count) const;

  static constexpr std::size_t kMostStreams = 50'000;
};

/// Kilometres over the sphere between a stream's base and a position in degrees.
double DistanceKm(const StreamRecord& stream, double latitude, double longitude);

}  // namespace tarvex

// The data files the toolbar fetches: served from the top level of the data
// folder under /updates/, with their hashes listed by /file_hashes exactly as
// the toolbar computes them for the comparison.
#pragma once

#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "server/HttpTypes.h"
#include "server/UpdateSigning.h"
#include "support/Log.h"

namespace tarnwick::server {

inline constexpr std::string_view kUpdatesPrefix = "/updates/";

class DataFiles {
 public:
  // `signer` (none: no signatures) signs what /updates/ serves.
  DataFiles(std::filesystem::path folder, Log& log, const UpdateSigner* signer = nullptr)
      : folder_(std::move(folder)), log_(log), signer_(signer) {}

  // GET /updates/<name>: the file with Last-Modified; 304 when
  // `ifModifiedSince` is at or after the file's time; 404 for a name that is
  // not a published file (including "..", slashes and hidden files).
  // <name>.sig: the signature of what <name> serves.
  HttpResponse Update(std::string_view encodedName, std::string_view ifModifiedSince) const;
  // GET /file_hashes?file0=NAME&file1=NAME...: "NAME=HASH" CR LF for each
  // published file asked for, in the order asked.
  HttpResponse FileHashes(std::string_view query) const;

 private:
  // The upper-case MD5 the toolbar computes for the file: over the raw bytes
  // of a ".dll" component, over the text of any other file. Empty when the
  // name is not a published file.
  std::string HashOf(std::string_view name) const;

  struct Stamp {
    std::filesystem::file_time_type modified;
    std::uintmax_t size = 0;
    bool operator==(const Stamp&) const = default;
  };
  struct CachedHash {
    Stamp stamp;
    std::string hash;
  };
  // The file's path and stamp when `name` is a published file.
  std::optional<std::pair<std::filesystem::path, Stamp>> Published(std::string_view name) const;

  std::filesystem::path folder_;
  Log& log_;
  const UpdateSigner* signer_;
  mutable std::mutex cacheMutex_;
  mutable std::unordered_map<std::string, CachedHash> hashes_;
};

}  // namespace tarnwick::server

// The in-memory index the verdicts are read from: built once from the
// storage, never changed afterwards, and replaced as a whole when the feeds
// change. A request never waits on the disk.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "server/Storage.h"

namespace tarnwick::server {

// Hashes std::string and std::string_view alike, for lookups without copies.
struct TextHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
};

class PhishIndex {
 public:
  struct Site {
    bool wholeSite = false;
    // The X-Phishing-Patterns value for the pages listed below the site's
    // root, made once here so that answering costs nothing; empty when none
    // are listed.
    std::string patterns;
  };

  // Reads the whole feed data from `storage`.
  static std::shared_ptr<const PhishIndex> Load(Storage& storage);

  // The entry for a lower-case host, or null when no feed lists it.
  const Site* Find(std::string_view host) const;
  // Phishing hosts known to be served from `address`.
  const std::vector<std::string>* HostsAt(std::uint32_t address) const;

  // "N hosts, M pages (feed version V)", for the log.
  std::string Describe() const;

  std::int64_t feedVersion() const { return feedVersion_; }

 private:
  friend class IndexBuilder;
  std::unordered_map<std::string, Site, TextHash, std::equal_to<>> sites_;
  std::unordered_map<std::uint32_t, std::vector<std::string>> addressHosts_;
  std::size_t pageCount_ = 0;
  std::int64_t feedVersion_ = 0;
};

}  // namespace tarnwick::server

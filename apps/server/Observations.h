// What the server learns while it answers: which hosts it has been asked
// about, and which addresses the known phishing hosts are served from (the
// toolbar sends the address it resolved; believed once several clients
// agree). Both feed the risk rating and are written to the storage in the
// background, so a restart remembers them.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "server/AddressWitnesses.h"
#include "server/PhishIndex.h"
#include "server/Storage.h"

namespace tarnwick::server {

class Observations {
 public:
  // Hosts are remembered up to `capacityBytes`, each counting its length
  // and kHostOverheadBytes; past that, new hosts stay "never seen", so a
  // flood of made-up names cannot exhaust the memory or the disk.
  explicit Observations(std::size_t capacityBytes = kDefaultSeenHostBytes) : capacityBytes_(capacityBytes) {}

  static constexpr std::size_t kDefaultSeenHostBytes = 128 << 20;
  static constexpr std::size_t kHostOverheadBytes = 64;

  // Remembers `host`; true when it had been seen before this call.
  bool NoteHost(std::string_view host);
  // Notes that `client` (its address) says the phishing host `host` is
  // served from `address`; remembered once enough clients have said so (see
  // AddressWitnesses.h).
  void NotePhishingAddress(std::uint32_t address, std::string_view host, std::string_view client);
  // Distinct phishing hosts other than `host` known at `address`, from the
  // feeds (through `index`) and from requests.
  std::size_t OtherPhishingHostsAt(std::uint32_t address, std::string_view host, const PhishIndex& index) const;

  // Takes back the hosts seen in earlier runs.
  void LoadSeen(Storage& storage);
  // Writes what was observed since the last flush. On a StorageError the
  // observations are kept for the next flush and the error is passed on.
  void Flush(Storage& storage);

 private:
  struct Shard {
    std::mutex mutex;
    std::unordered_set<std::string, TextHash, std::equal_to<>> hosts;
    std::vector<std::string> unsaved;
  };
  Shard& ShardOf(std::string_view host) { return shards_[TextHash{}(host) % shards_.size()]; }
  // Counts `host` against the capacity; false, counting nothing, when it
  // does not fit.
  bool Reserve(std::string_view host);

  std::size_t capacityBytes_;
  std::atomic<std::size_t> usedBytes_{0};
  std::array<Shard, 32> shards_;

  AddressWitnesses witnesses_;
  mutable std::shared_mutex addressMutex_;
  std::unordered_map<std::uint32_t, std::vector<std::string>> addressHosts_;
  std::vector<HostAddress> unsavedAddresses_;
};

}  // namespace tarnwick::server

#include "server/Observations.h"

#include <algorithm>
#include <iterator>

namespace tarnwick::server {
namespace {

bool Contains(const std::vector<std::string>* hosts, std::string_view host) {
  return hosts != nullptr && std::find(hosts->begin(), hosts->end(), host) != hosts->end();
}

}  // namespace

bool Observations::Reserve(std::string_view host) {
  const std::size_t bytes = host.size() + kHostOverheadBytes;
  std::size_t used = usedBytes_.load(std::memory_order_relaxed);
  do {
    if (used + bytes > capacityBytes_) return false;
  } while (!usedBytes_.compare_exchange_weak(used, used + bytes, std::memory_order_relaxed));
  return true;
}

bool Observations::NoteHost(std::string_view host) {
  Shard& shard = ShardOf(host);
  std::lock_guard lock(shard.mutex);
  if (shard.hosts.find(host) != shard.hosts.end()) return true;
  if (Reserve(host)) {
    shard.hosts.emplace(host);
    shard.unsaved.emplace_back(host);
  }
  return false;
}

void Observations::NotePhishingAddress(std::uint32_t address, std::string_view host, std::string_view client) {
  {
    std::shared_lock lock(addressMutex_);
    const auto found = addressHosts_.find(address);
    if (found != addressHosts_.end() && Contains(&found->second, host)) return;
  }
  if (!witnesses_.Report(address, host, client, AddressWitnesses::Clock::now())) return;
  std::unique_lock lock(addressMutex_);
  auto& hosts = addressHosts_[address];
  if (Contains(&hosts, host)) return;
  hosts.emplace_back(host);
  unsavedAddresses_.emplace_back(address, std::string(host));
}

std::size_t Observations::OtherPhishingHostsAt(std::uint32_t address, std::string_view host,
                                               const PhishIndex& index) const {
  const std::vector<std::string>* fromFeeds = index.HostsAt(address);
  std::size_t count = 0;
  if (fromFeeds != nullptr) {
    for (const std::string& other : *fromFeeds) count += other != host ? 1 : 0;
  }
  std::shared_lock lock(addressMutex_);
  const auto found = addressHosts_.find(address);
  if (found == addressHosts_.end()) return count;
  for (const std::string& other : found->second) count += other != host && !Contains(fromFeeds, other) ? 1 : 0;
  return count;
}

void Observations::LoadSeen(Storage& storage) {
  storage.LoadSeenHosts([this](std::string_view host) {
    Shard& shard = ShardOf(host);
    std::lock_guard lock(shard.mutex);
    if (shard.hosts.find(host) != shard.hosts.end()) return true;
    if (!Reserve(host)) return false;
    shard.hosts.emplace(host);
    return true;
  });
}

void Observations::Flush(Storage& storage) {
  std::vector<std::string> hosts;
  for (Shard& shard : shards_) {
    std::lock_guard lock(shard.mutex);
    std::move(shard.unsaved.begin(), shard.unsaved.end(), std::back_inserter(hosts));
    shard.unsaved.clear();
  }
  std::vector<HostAddress> addresses;
  {
    std::unique_lock lock(addressMutex_);
    addresses.swap(unsavedAddresses_);
  }
  if (hosts.empty() && addresses.empty()) return;
  try {
    storage.RecordObservations(hosts, addresses);
  } catch (const StorageError&) {
    for (std::string& host : hosts) {
      Shard& shard = ShardOf(host);
      std::lock_guard lock(shard.mutex);
      shard.unsaved.push_back(std::move(host));
    }
    std::unique_lock lock(addressMutex_);
    std::move(addresses.begin(), addresses.end(), std::back_inserter(unsavedAddresses_));
    throw;
  }
}

}  // namespace tarnwick::server

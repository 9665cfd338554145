#include "server/AddressWitnesses.h"

#include <arpa/inet.h>

#include <algorithm>

#include "server/AddressText.h"

namespace tarnwick::server {

std::string ClientNetwork(std::string_view clientAddress) {
  auto address = ReadIPv6Text(clientAddress);
  if (!address) return std::string(clientAddress);
  std::fill(address->s6_addr + 8, address->s6_addr + 16, 0);
  char network[INET6_ADDRSTRLEN] = {};
  inet_ntop(AF_INET6, &*address, network, sizeof network);
  return std::string(network) + "/64";
}

bool AddressWitnesses::Spend(const std::string& client, Clock::time_point now) {
  auto found = clients_.find(client);
  if (found == clients_.end()) {
    if (clients_.size() >= kMaxClients) {
      // Clients whose allowance has refilled owe nothing: forgetting them
      // changes nothing. If that is not enough, everyone starts afresh.
      std::erase_if(clients_, [&](const auto& entry) { return now - entry.second.updated >= std::chrono::minutes(1); });
      if (clients_.size() >= kMaxClients) clients_.clear();
    }
    found = clients_.emplace(client, Allowance{kNewPairsPerMinute, now}).first;
  }
  Allowance& allowance = found->second;
  const double minutes = std::chrono::duration<double, std::ratio<60>>(now - allowance.updated).count();
  allowance.tokens = std::min(kNewPairsPerMinute, allowance.tokens + minutes * kNewPairsPerMinute);
  allowance.updated = now;
  if (allowance.tokens < 1) return false;
  allowance.tokens -= 1;
  return true;
}

bool AddressWitnesses::Report(std::uint32_t address, std::string_view host, std::string_view client,
                              Clock::time_point now) {
  const std::string network = ClientNetwork(client);
  std::pair<std::uint32_t, std::string> key{address, std::string(host)};
  std::lock_guard lock(mutex_);
  auto pair = pending_.find(key);
  if (pair != pending_.end() && std::find(pair->second.begin(), pair->second.end(), network) != pair->second.end()) {
    return false;  // said before: a second time adds nothing
  }
  if (!Spend(network, now)) return false;
  if (pair == pending_.end()) {
    if (pending_.size() >= kMaxPendingPairs) pending_.clear();
    pair = pending_.emplace(std::move(key), std::vector<std::string>()).first;
  }
  pair->second.push_back(network);
  if (pair->second.size() < kWitnesses) return false;
  pending_.erase(pair);
  return true;
}

}  // namespace tarnwick::server

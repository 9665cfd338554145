// Which address a phishing host is served from, as clients report it: the
// toolbar sends the address it resolved with every /check_url question. A
// client can send any address, so one client's word counts for nothing: a
// pair is believed once kWitnesses different clients have reported it, and
// each client may put forward only a few new pairs a minute. Otherwise
// anyone could tie a listed phishing host to an innocent site's address and
// raise that site's rating. A client is its IPv4 address, or the /64 network
// of its IPv6 address (one machine commonly holds a whole /64).
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarnwick::server {

class AddressWitnesses {
 public:
  using Clock = std::chrono::steady_clock;

  static constexpr std::size_t kWitnesses = 3;
  static constexpr double kNewPairsPerMinute = 10;  // per client, also the burst
  // Bounds on what is remembered; past them the oldest knowledge is dropped.
  static constexpr std::size_t kMaxPendingPairs = 100'000;
  static constexpr std::size_t kMaxClients = 100'000;

  // Notes that `client` (its address as text) says `host` is served from
  // `address`; true when this report is the one that makes the pair
  // believed. Reports of a pair already believed should not come here.
  bool Report(std::uint32_t address, std::string_view host, std::string_view client, Clock::time_point now);

 private:
  struct Allowance {
    double tokens = kNewPairsPerMinute;
    Clock::time_point updated;
  };
  // Takes one new-pair allowance from the client; false when it has none left.
  bool Spend(const std::string& client, Clock::time_point now);

  std::mutex mutex_;
  std::map<std::pair<std::uint32_t, std::string>, std::vector<std::string>> pending_;
  std::map<std::string, Allowance, std::less<>> clients_;
};

// The client key of an address as text: the IPv4 address itself, or the
// /64 network of an IPv6 address ("2001:db8:1:2::/64"); the text as given
// when it is neither.
std::string ClientNetwork(std::string_view clientAddress);

}  // namespace tarnwick::server

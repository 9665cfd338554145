// The address the server listens on, as given on its command line.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tarnwick::server {

struct ListenAddress {
  std::string host;  // IPv4 dotted or IPv6 without brackets
  std::uint16_t port = 0;
};

// "127.0.0.1:8750" or "[::1]:0": a numeric address (IPv6 in brackets) and a
// port; nothing when the text is not of that form.
std::optional<ListenAddress> ParseListenAddress(std::string_view text);
// "http://127.0.0.1:8750", "http://[::1]:8750": the form a client uses.
std::string BaseAddress(const ListenAddress& address);

}  // namespace tarnwick::server

#include "server/ListenAddress.h"

#include <charconv>

#include "server/AddressText.h"

namespace tarnwick::server {

std::optional<ListenAddress> ParseListenAddress(std::string_view text) {
  const auto colon = text.rfind(':');
  if (colon == std::string_view::npos || colon == 0) return std::nullopt;
  std::string_view host = text.substr(0, colon);
  const std::string_view port = text.substr(colon + 1);
  // IPv6 in brackets, IPv4 without: the host is then one a client can reach
  // at the address BaseAddress writes.
  if (host.front() == '[') {
    if (host.size() < 3 || host.back() != ']') return std::nullopt;
    host = host.substr(1, host.size() - 2);
    if (!ReadIPv6Text(host)) return std::nullopt;
  } else if (!ReadIPv4Text(host)) {
    return std::nullopt;
  }
  unsigned value = 0;
  const auto [end, error] = std::from_chars(port.data(), port.data() + port.size(), value);
  if (port.empty() || error != std::errc() || end != port.data() + port.size() || value > 65535) return std::nullopt;
  return ListenAddress{std::string(host), static_cast<std::uint16_t>(value)};
}

std::string BaseAddress(const ListenAddress& address) {
  const bool v6 = address.host.find(':') != std::string::npos;
  return "http://" + (v6 ? "[" + address.host + "]" : address.host) + ":" + std::to_string(address.port);
}

}  // namespace tarnwick::server

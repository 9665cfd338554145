#include "server/AddressText.h"

#include <arpa/inet.h>

#include <string>

namespace tarnwick::server {
namespace {

// `text` as the C string the parsers take; nothing when a NUL would cut it short.
std::optional<std::string> WholeText(std::string_view text) {
  if (text.find('\0') != std::string_view::npos) return std::nullopt;
  return std::string(text);
}

template <int family, typename Address>
std::optional<Address> ReadWith(std::string_view text) {
  const auto whole = WholeText(text);
  Address address{};
  if (!whole || inet_pton(family, whole->c_str(), &address) != 1) return std::nullopt;
  return address;
}

}  // namespace

std::optional<in_addr> ReadIPv4Text(std::string_view text) { return ReadWith<AF_INET, in_addr>(text); }

std::optional<in6_addr> ReadIPv6Text(std::string_view text) { return ReadWith<AF_INET6, in6_addr>(text); }

std::optional<in_addr> ReadAnyIPv4Text(std::string_view text) {
  const auto whole = WholeText(text);
  in_addr address{};
  if (!whole || inet_aton(whole->c_str(), &address) == 0) return std::nullopt;
  return address;
}

}  // namespace tarnwick::server

#include "server/HostNames.h"

#include <algorithm>

#include "server/AddressText.h"
#include "server/QueryString.h"
#include "support/Text.h"

namespace tarnwick::server {
namespace {

// The authority without its user part.
std::string_view HostAndPort(std::string_view authority) {
  const auto at = authority.rfind('@');
  return at == std::string_view::npos ? authority : authority.substr(at + 1);
}

// Where the port's ":" is in "host:port", or npos.
std::size_t PortColon(std::string_view hostAndPort) {
  if (!hostAndPort.empty() && hostAndPort.front() == '[') {
    const auto close = hostAndPort.find(']');
    return close != std::string_view::npos && close + 1 < hostAndPort.size() && hostAndPort[close + 1] == ':'
               ? close + 1
               : std::string_view::npos;
  }
  return hostAndPort.find(':');
}

bool IsLabelCharacter(char c) { return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '_'; }

// Lower-case host name without a final dot.
bool IsHostName(std::string_view host) {
  if (host.empty() || host.size() > kMaxHostBytes) return false;
  std::size_t label = 0;
  for (const char c : host) {
    if (c == '.') {
      if (label == 0) return false;
      label = 0;
    } else if (!IsLabelCharacter(c) || ++label > kMaxLabelBytes) {
      return false;
    }
  }
  return label > 0;
}

bool IsIpv6Literal(std::string_view host) {
  if (host.size() < 4 || host.front() != '[' || host.back() != ']') return false;
  return ReadIPv6Text(host.substr(1, host.size() - 2)).has_value();
}

}  // namespace

std::string_view HostPartOfAuthority(std::string_view authority) {
  const std::string_view hostAndPort = HostAndPort(authority);
  return hostAndPort.substr(0, PortColon(hostAndPort));
}

std::string HostOfAuthority(std::string_view authority) {
  std::string host = LowerAscii(PercentDecode(HostPartOfAuthority(authority)));
  if (IsIpv6Literal(host)) return host;
  if (!host.empty() && host.back() == '.') host.pop_back();
  return IsHostName(host) ? host : std::string();
}

bool HasValidPort(std::string_view authority) {
  const std::string_view hostAndPort = HostAndPort(authority);
  const auto colon = PortColon(hostAndPort);
  if (colon == std::string_view::npos) return true;
  const std::string_view port = hostAndPort.substr(colon + 1);
  if (port.empty() || port.size() > 5) return false;
  unsigned value = 0;
  for (const char c : port) {
    if (c < '0' || c > '9') return false;
    value = value * 10 + static_cast<unsigned>(c - '0');
  }
  return value <= 65535;
}

bool IsInternetHost(std::string_view host) {
  if (IsNumericHost(host)) return true;
  const auto dot = host.rfind('.');
  if (dot == std::string_view::npos) return false;
  const std::string_view topLevel = host.substr(dot + 1);
  if (topLevel.starts_with("xn--")) return topLevel.size() > 4;
  return topLevel.size() >= 2 &&
         std::all_of(topLevel.begin(), topLevel.end(), [](char c) { return c >= 'a' && c <= 'z'; });
}

bool IsNumericHost(std::string_view host) { return IsIpv6Literal(host) || ReadAnyIPv4Text(host); }

bool IsPrivateAddress(std::uint32_t address) {
  const unsigned b1 = address >> 24, b2 = (address >> 16) & 0xFF, b3 = (address >> 8) & 0xFF;
  return b1 >= 224 || (b1 == 192 && b2 == 0 && b3 == 2) || b1 == 10 || b1 == 0 || b1 == 127 ||
         (b1 == 172 && b2 >= 16 && b2 <= 31) || (b1 == 192 && b2 == 168) || (b1 == 169 && b2 == 254);
}

std::string_view ParentDomain(std::string_view host) {
  const auto dot = host.find('.');
  return dot == std::string_view::npos ? std::string_view() : host.substr(dot + 1);
}

}  // namespace tarnwick::server

#include "check/mdlDNS.h"

#include <algorithm>

#include "support/Text.h"

namespace tarnwick {

std::string mdlDNS::URL2Hostname(std::string_view URL, Rex& rex) {
  const auto match = rex.Match(URL, R"(^[^:]+://(?:[^\?/]+@)?([^\\/\?:]+))");
  if (!match || match->empty()) {
    log_.DebugLog("(URL2Hostname) Bad url: " + std::string(URL));
    return {};
  }
  std::string host = (*match)[0];
  host = rex.Replace(host, R"(\%([\da-f]{2}))", "chr(hex($1))", "ige");
  host = rex.Replace(host, R"([\x00-\x1f\x7f-\xff]+)", "", "g");
  host = rex.Replace(host, R"(^\.+|\.+$)", "", "g");
  host = rex.Replace(host, R"(\.{2,})", ".", "g");
  host = rex.Replace(host, R"(([^A-Za-z0-9\-\.]))", "'%'.sprintf('%02x', ord($1))", "ge");
  if (rex.Test(host, R"(^(?:x[0-9]|[0-9\.])+$)") && std::count(host.begin(), host.end(), '.') < 4) {
    const std::string dotted = IPAddressString(host);
    if (dotted.empty()) {
      log_.DebugLog("(URL2Hostname) Looks like IP address but isn't: " + host);
    } else {
      host = dotted;
    }
  }
  return LowerAscii(host);
}

std::optional<IPv4Bytes> mdlDNS::GetIPAddressBytes(std::string& host) {
  if (!SocketsInit()) return std::nullopt;
  std::optional<IPv4Bytes> address = ParseIPv4Address(host);
  const bool usable = address && *address != IPv4Bytes{0, 0, 0, 0} && *address != IPv4Bytes{255, 255, 255, 255};
  if (!usable) {
    address.reset();
    if (resolver_.ConnectionUsesProxy()) {
      SocketsCleanup();
      return std::nullopt;
    }
    const auto first = host.find_first_not_of(' ');
    host = first == std::string::npos ? std::string() : host.substr(first, host.find_last_not_of(' ') - first + 1);
    address = resolver_.ResolveName(host);
    if (!address) {
      log_.DebugLog("(GetIPAddressBytes) Unable to resolve hostname " + host);
      SocketsCleanup();
      return std::nullopt;
    }
  }
  SocketsCleanup();
  return address;
}

std::string mdlDNS::IPAddressString(std::string host) {
  const auto address = GetIPAddressBytes(host);
  return address ? DottedAddress(*address) : std::string();
}

bool mdlDNS::IsPrivateAddress(const std::optional<IPv4Bytes>& address) {
  if (!address) return false;
  const auto [b1, b2, b3, b4] = *address;
  (void)b4;
  return b1 >= 224 || (b1 == 192 && b2 == 0 && b3 == 2) || b1 == 10 || b1 == 0 || b1 == 127 ||
         (b1 == 172 && b2 >= 16 && b2 <= 31) || (b1 == 192 && b2 == 168) || (b1 == 169 && b2 == 254);
}

bool mdlDNS::SocketsInit() {
  if (resolver_.Startup()) return true;
  log_.WriteLog("Failed to initialise Windows Sockets");
  return false;
}

void mdlDNS::SocketsCleanup() {
  if (!resolver_.Cleanup()) log_.DebugLog("(SocketsCleanup) Socket error occurred in DNS cleanup.");
}

}  // namespace tarnwick

#include <winsock2.h>
// After winsock2.h, which must come first.
#include <wininet.h>
#include <ws2tcpip.h>

#include <cstring>

#include "check/Resolver.h"

namespace tarnwick {
namespace {

IPv4Bytes BytesOf(unsigned long address) {
  IPv4Bytes bytes{};
  std::memcpy(bytes.data(), &address, 4);
  return bytes;
}

class WindowsResolver final : public Resolver {
 public:
  bool Startup() override {
    WSADATA data{};
    if (WSAStartup(MAKEWORD(1, 1), &data) != 0) return false;
    return data.wVersion >= MAKEWORD(1, 1);
  }
  bool Cleanup() override { return WSACleanup() == 0; }

  bool ConnectionUsesProxy() override {
    DWORD flags = 0;
    return InternetGetConnectedState(&flags, 0) != FALSE && (flags & INTERNET_CONNECTION_PROXY) != 0;
  }

  std::optional<IPv4Bytes> ResolveName(const std::string& host) override {
    const hostent* entry = gethostbyname(host.c_str());
    if (entry == nullptr || entry->h_addrtype != AF_INET || entry->h_addr_list[0] == nullptr) return std::nullopt;
    unsigned long address = 0;
    std::memcpy(&address, entry->h_addr_list[0], 4);
    return BytesOf(address);
  }
};

}  // namespace

std::unique_ptr<Resolver> MakePlatformResolver() { return std::make_unique<WindowsResolver>(); }

}  // namespace tarnwick

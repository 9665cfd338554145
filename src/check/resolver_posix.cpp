#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cstdlib>
#include <cstring>
#include <fstream>

#include "check/HostsFile.h"
#include "check/Resolver.h"
#include "support/Text.h"

namespace tarnwick {
namespace {

IPv4Bytes BytesOf(in_addr address) {
  IPv4Bytes bytes{};
  std::memcpy(bytes.data(), &address.s_addr, 4);  // network order: first byte first
  return bytes;
}

// Enough for any hand-written hosts file; a larger one is read this far.
constexpr std::size_t kMaxHostsFileBytes = 1 << 20;

// The address TARNWICK_HOSTS (a file in the hosts format) gives the name.
std::optional<IPv4Bytes> LookUpOwnHosts(const std::string& name) {
  const char* file = std::getenv("TARNWICK_HOSTS");
  if (file == nullptr || *file == '\0') return std::nullopt;
  std::ifstream in(file, std::ios::binary);
  std::string text(kMaxHostsFileBytes, '\0');
  in.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<std::size_t>(in.gcount()));
  return LookUpHostsText(text, name);
}

class PosixResolver final : public Resolver {
 public:
  bool Startup() override { return true; }
  bool Cleanup() override { return true; }

  // libcurl goes through a proxy when one of these is set.
  bool ConnectionUsesProxy() override {
    for (const char* name : {"http_proxy", "HTTP_PROXY", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"}) {
      const char* value = std::getenv(name);
      if (value != nullptr && *value != '\0') return true;
    }
    return false;
  }

  // Names under the reserved top-level domains and example domains never
  // resolve on the public DNS (and "localhost" is this machine): no query is
  // sent for them, unless the TARNWICK_HOSTS file names them.
  std::optional<IPv4Bytes> ResolveName(const std::string& host) override {
    const std::string name = LowerAscii(host);
    if (const auto own = LookUpOwnHosts(name)) return own;
    if (name == "localhost" || name.ends_with(".localhost")) return IPv4Bytes{127, 0, 0, 1};
    for (const char* reserved : {".example", ".test", ".invalid", ".example.com", ".example.net", ".example.org"}) {
      if (name.ends_with(reserved) || name == std::string_view(reserved).substr(1)) return std::nullopt;
    }
    addrinfo hints{};
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* answer = nullptr;
    if (getaddrinfo(host.c_str(), nullptr, &hints, &answer) != 0 || answer == nullptr) return std::nullopt;
    const IPv4Bytes bytes = BytesOf(reinterpret_cast<sockaddr_in*>(answer->ai_addr)->sin_addr);
    freeaddrinfo(answer);
    return bytes;
  }
};

}  // namespace

std::unique_ptr<Resolver> MakePlatformResolver() { return std::make_unique<PosixResolver>(); }

}  // namespace tarnwick

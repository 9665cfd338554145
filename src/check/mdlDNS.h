// mdlDNS: a URL's clean host name, the host's IPv4 address, and whether an
// address is private or special-use (such sites are never sent to the server).
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "check/Resolver.h"
#include "check/Rex.h"
#include "support/Log.h"

namespace tarnwick {

class mdlDNS {
 public:
  mdlDNS(Resolver& resolver, Log& log) : resolver_(resolver), log_(log) {}

  // The lower-case host of a URL with escapes decoded, control characters and
  // stray dots removed, other odd characters %-escaped, and numeric forms
  // written as dotted decimal; "" when the URL has no host.
  std::string URL2Hostname(std::string_view URL, Rex& rex);
  // The host's address; trims blanks around `host` in place before a name
  // look-up. nullopt when it does not resolve or a proxy resolves for us.
  std::optional<IPv4Bytes> GetIPAddressBytes(std::string& host);
  // "a.b.c.d", or "" when the host does not resolve.
  std::string IPAddressString(std::string host);
  static bool IsPrivateAddress(const std::optional<IPv4Bytes>& address);
  bool SocketsInit();
  void SocketsCleanup();

 private:
  Resolver& resolver_;
  Log& log_;
};

}  // namespace tarnwick

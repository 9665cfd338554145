// Resolver port: the sockets session, name resolution, and whether the
// machine reaches the Internet through a proxy. Numeric hosts never come
// here: they are read by ParseIPv4Address, as the security zone reads them.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "support/IPv4Address.h"

namespace tarnwick {

class Resolver {
 public:
  virtual ~Resolver() = default;
  // Starts a sockets session; false when the library cannot be used.
  virtual bool Startup() = 0;
  // Ends it; false when the library reported an error.
  virtual bool Cleanup() = 0;
  virtual bool ConnectionUsesProxy() = 0;
  // The first IPv4 address of the name; nullopt when it does not resolve.
  virtual std::optional<IPv4Bytes> ResolveName(const std::string& host) = 0;
};

std::unique_ptr<Resolver> MakePlatformResolver();

}  // namespace tarnwick

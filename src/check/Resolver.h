// Resolver port: the sockets library's address parser and name resolution,
// and whether the machine reaches the Internet through a proxy.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace tarnwick {

using IPv4Bytes = std::array<std::uint8_t, 4>;  // first byte most significant

class Resolver {
 public:
  virtual ~Resolver() = default;
  // Starts a sockets session; false when the library cannot be used.
  virtual bool Startup() = 0;
  // Ends it; false when the library reported an error.
  virtual bool Cleanup() = 0;
  // The dotted-address parser: every numeric form the platform accepts
  // ("10.1", "0x7f000001", "3232235777"); nullopt when it is not one.
  virtual std::optional<IPv4Bytes> ParseAddress(const std::string& host) = 0;
  virtual bool ConnectionUsesProxy() = 0;
  // The first IPv4 address of the name; nullopt when it does not resolve.
  virtual std::optional<IPv4Bytes> ResolveName(const std::string& host) = 0;
};

std::unique_ptr<Resolver> MakePlatformResolver();

}  // namespace tarnwick

// Name resolution from a table: tests never ask a DNS server beyond this
// machine.
#pragma once

#include <map>
#include <string>

#include "check/Resolver.h"

namespace tarnwick::testing {

class TableResolver final : public Resolver {
 public:
  bool Startup() override { return true; }
  bool Cleanup() override { return true; }
  bool ConnectionUsesProxy() override { return false; }
  std::optional<IPv4Bytes> ResolveName(const std::string& host) override {
    const auto it = names.find(host);
    return it == names.end() ? std::nullopt : std::optional<IPv4Bytes>(it->second);
  }
  std::map<std::string, IPv4Bytes> names;
};

}  // namespace tarnwick::testing

// The host name the check sends to the server and weighs against the zone
// lists, read from a URL with the regular-expression component in-process.
#include <algorithm>

#include "FuzzSupport.h"
#include "RexObject.h"
#include "check/mdlDNS.h"

namespace {

// Every host is a number or a name as written: nothing is looked up.
class NoLookups final : public tarnwick::Resolver {
 public:
  bool Startup() override { return true; }
  bool Cleanup() override { return true; }
  bool ConnectionUsesProxy() override { return true; }
  std::optional<tarnwick::IPv4Bytes> ResolveName(const std::string& host) override {
    tarnwick::fuzz::Broken("a proxy resolves names: none is looked up", host);
  }
};

bool HostByte(char c) { return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '.' || c == '%'; }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarnwick;
  static rex::RexObject object(fuzz::FuzzLog());
  static Rex rex(object);
  static NoLookups resolver;
  static mdlDNS dns(resolver, fuzz::FuzzLog());

  const std::string host = dns.URL2Hostname(fuzz::AsText(data, size), rex);
  if (!std::all_of(host.begin(), host.end(), HostByte)) fuzz::Broken("odd characters are %-escaped", host);
  if (host.starts_with('.') || host.ends_with('.') || host.find("..") != std::string::npos) {
    fuzz::Broken("stray dots are removed", host);
  }
  return 0;
}

#include "settings/Endpoints.h"

#include <cstdlib>

namespace tarnwick {
namespace {

std::string WithoutTrailingSlash(std::string address) {
  while (!address.empty() && address.back() == '/') address.pop_back();
  return address;
}

std::string FromEnvironment(const char* name, std::string_view fallback) {
  const char* value = std::getenv(name);
  return WithoutTrailingSlash(value != nullptr && *value != '\0' ? std::string(value) : std::string(fallback));
}

}  // namespace

Endpoints ResolveEndpoints(std::string_view serverFlag) {
  Endpoints endpoints{FromEnvironment("TARNWICK_SERVER", kDefaultServer),
                      FromEnvironment("TARNWICK_SITE", kDefaultSite)};
  if (!serverFlag.empty()) endpoints.server = WithoutTrailingSlash(std::string(serverFlag));
  return endpoints;
}

}  // namespace tarnwick

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
  std::string server = FromEnvironment("TARNWICK_SERVER", kDefaultServer);
  if (!serverFlag.empty()) server = WithoutTrailingSlash(std::string(serverFlag));
  // The reference server is also the web site: without a site of its own the
  // site follows the server.
  std::string site = FromEnvironment("TARNWICK_SITE", server);
  return {std::move(server), std::move(site)};
}

}  // namespace tarnwick

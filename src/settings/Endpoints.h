// Where the toolbar server and the maker's web site are. The server has one
// compiled-in default (the reference server on loopback, the embedded
// default), overridden by TARNWICK_SERVER and, above that, by a command's
// --server flag. The site is TARNWICK_SITE, or else the server's address.
#pragma once

#include <string>
#include <string_view>

namespace tarnwick {

inline constexpr std::string_view kDefaultServer = "http://127.0.0.1:8750";

struct Endpoints {
  std::string server;  // base address of the toolbar server, no trailing slash
  std::string site;    // base address of the web site, no trailing slash
};

// The default, then the environment, then `serverFlag` when it is not empty.
Endpoints ResolveEndpoints(std::string_view serverFlag = {});

}  // namespace tarnwick

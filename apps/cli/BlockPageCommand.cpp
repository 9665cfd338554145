// tarnwick blockpage: the block page as the program carries it, with the
// web site's address filled in.
#include <iostream>

#include "Cli.h"
#include "band/BlockPage.h"
#include "settings/Endpoints.h"

namespace tarnwick::cli {

int RunBlockPage(const std::vector<std::string>& args) {
  if (!args.empty()) {
    std::cerr << "usage: tarnwick blockpage\n";
    return kExitError;
  }
  std::cout << BandResource(ResolveEndpoints(), kBlockPageResource).value_or("");
  return kExitOk;
}

}  // namespace tarnwick::cli

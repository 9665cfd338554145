#include "support/Version.h"

#include "ProductInfo.h"

namespace tarnwick {

std::string VersionText() {
  return std::to_string(product::kVersionMajor) + "." + std::to_string(product::kVersionMinor) + "." +
         std::to_string(product::kVersionRevision);
}

std::string AgentString() { return std::string(product::kFileDescription) + " (v" + VersionText() + ")"; }

}  // namespace tarnwick

#include "band/BlockPage.h"

#include "band/EmbeddedResources.h"
#include "settings/mdlRegistry.h"
#include "support/Text.h"

namespace tarnwick {
namespace {

// Stands in the page for the web site's address.
constexpr std::string_view kSitePlaceholder = "{{site}}";

}  // namespace

std::optional<std::string> BandResource(const Endpoints& endpoints, std::string_view name) {
  for (const auto& resource : EmbeddedResources()) {
    if (!EqualsIgnoreCase(resource.name, name)) continue;
    std::string bytes(resource.bytes);
    if (EqualsIgnoreCase(name, kBlockPageResource)) {
      for (auto at = bytes.find(kSitePlaceholder); at != std::string::npos;
           at = bytes.find(kSitePlaceholder, at + endpoints.site.size())) {
        bytes.replace(at, kSitePlaceholder.size(), endpoints.site);
      }
    }
    return bytes;
  }
  return std::nullopt;
}

void RegisterAboutURL(ToolbarProcess& process) {
  std::unique_ptr<RegistryKey> key;
  // The key is the browser's: where it is missing there is no browser to
  // show the page, and nothing is created.
  if (process.settings->OpenKey(Root::LocalMachine, kAboutURLsKey, Access::All, key) != kErrorSuccess) return;
  mdlRegistry::WriteValue(*key, "PhishingSite", kRegSz, std::string(kBlockPageURL));
}

}  // namespace tarnwick

#include "ui/mdlBitmapMenu.h"

#include <algorithm>

#include "support/RoutineError.h"
#include "ui/MenuFiles.h"
#include "ui/UiResources.h"
#include "ui/mdlXMLMenu.h"

namespace tarnwick {
namespace {

constexpr std::string_view kSiteMarker = "<!SITE>";

std::string ReplaceSiteMarker(std::string text, std::string_view server) {
  for (auto at = text.find(kSiteMarker); at != std::string::npos; at = text.find(kSiteMarker, at + server.size())) {
    text.replace(at, kSiteMarker.size(), server);
  }
  return text;
}

}  // namespace

std::string_view ProductButtonBitmap() {
  const auto resources = UiResources();
  const auto found = std::find_if(resources.begin(), resources.end(), [](const EmbeddedResource& resource) {
    return resource.name == "productbutton.bmp";
  });
  return found != resources.end() ? found->bytes : std::string_view();
}

void InitialiseBitmapMenu(MenuPorts& ports) {
  try {
    const std::string text = ReadAndRefreshMenuFile(ports, "tarnwick.xml");
    ports.menus.productMenu = XMLMenu(ReplaceSiteMarker(text, ports.endpoints.server), ports.log);
    const auto size = ReadBitmapSize(ProductButtonBitmap());
    if (const auto* problem = std::get_if<std::string>(&size)) {
      throw RoutineError(kErrInvalidProcedureCall, "product button bitmap: " + *problem);
    }
    ports.menus.productBitmap = std::get<BitmapSize>(size);
  } catch (const std::exception& error) {
    ports.log.DebugLog("(InitialiseBitmapMenu) Error: " + std::string(error.what()));
  }
}

}  // namespace tarnwick

#include "ui/mdlClientBitmapMenu.h"

#include "support/RoutineError.h"
#include "ui/MenuFiles.h"
#include "ui/mdlXMLMenu.h"

namespace tarnwick {

void InitialiseClientBitmapMenu(MenuPorts& ports) {
  MenuState& menus = ports.menus;
  try {
    menus.clientMenu = XMLMenu(ReadAndRefreshMenuFile(ports, "menu.xml"), ports.log);
    menus.clientLogoFile.clear();
    menus.clientLogo = {};
    const std::string logo = ReadAndRefreshMenuFile(ports, "logo.bmp");
    if (logo.empty()) return;  // no logo: the band shows no client menu button
    const auto size = ReadBitmapSize(logo);
    if (const auto* problem = std::get_if<std::string>(&size)) {
      throw RoutineError(kErrInvalidProcedureCall, "logo.bmp cannot be shown: " + *problem);
    }
    menus.clientLogoFile = ports.paths.ProgramFolder() / "logo.bmp";
    menus.clientLogo = std::get<BitmapSize>(size);
  } catch (const std::exception& error) {
    ports.log.DebugLog("(InitialiseClientBitmapMenu) Error: " + std::string(error.what()));
  }
}

}  // namespace tarnwick

#include "band/ComponentFailed.h"

#include <string>

#include "ui/Ui.h"

namespace tarnwick {

void ComponentFailed(ToolbarProcess& process, Browser* browser, std::string_view name) {
  const std::string& title = process.FileDescription;
  process.ui.MessageBox(
      "Your " + process.FileDescription + " has become corrupted (" + std::string(name) + " component).", title,
      vbOKOnly | vbCritical);
  if (process.FileDescription != "Tarnwick Toolbar") return;
  process.ui.MessageBox(" You will now be redirected to the Tarnwick website, where you can reinstall the toolbar.",
                        title, vbOKOnly | vbInformation);
  if (browser == nullptr) return;
  browser->Stop();
  browser->Navigate(NavigateRequest(process.endpoints.site + "/install"));
}

}  // namespace tarnwick

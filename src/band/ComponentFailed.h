// What the band tells the user when a companion component stays broken.
#pragma once

#include <string_view>

#include "band/Browser.h"
#include "band/ToolbarProcess.h"

namespace tarnwick {

// Reports the broken component `name` ("PageFetch", "CheckURL") in a message
// box; the Tarnwick Toolbar itself (not a product built under another file
// description) then sends `browser` (when there is one) to the web site's
// install page.
void ComponentFailed(ToolbarProcess& process, Browser* browser, std::string_view name);

}  // namespace tarnwick

// The component factory: creating a companion component by ProgID with one
// attempt at self-repair, and calling a component library's own registration
// entry point.
#pragma once

#include <filesystem>
#include <memory>
#include <string_view>

#include "band/ToolbarProcess.h"
#include "support/ComponentObject.h"

namespace tarnwick {

// Creates the object registered as `progId`. When the system cannot create
// it (error 429: not registered, or its file is gone), registers `path` again
// and tries once more. Returns nullptr when there is no object; the event log
// says why.
std::unique_ptr<ComponentObject> NewObject(ToolbarProcess& process, const std::filesystem::path& path,
                                           std::string_view progId);

// Loads the library at `path` and calls its DllRegisterServer (or, when
// `registerServer` is false, DllUnregisterServer). A library that does not
// load or lacks the entry point is passed over quietly; an entry point that
// fails is logged. True when the entry point ran and succeeded.
bool RegisterDLL(ToolbarProcess& process, const std::filesystem::path& path, bool registerServer);

}  // namespace tarnwick

// Creating a component object by ProgID, the system's by-name object
// creation: COM on Windows; on POSIX the library file registered for the
// ProgID (see ClassRegistry.h), loaded and asked through its C entry point
// (see support/ComponentAbi.h).
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "settings/SettingsStore.h"
#include "support/ComponentObject.h"

namespace tarnwick {

// Error numbers of a failed creation, as Automation numbers them.
inline constexpr long kErrCannotCreateObject = 429;  // not registered, or its file is gone
inline constexpr long kErrLoadingDll = 48;           // the file is there but is no loadable library
inline constexpr long kErrDllEntryPoint = 453;       // a library without the component entry point

// 0 with `object` set, or one of the numbers above (or another the system
// gave) with its `description`.
long CreateObject(SettingsStore& store, std::string_view progId, std::unique_ptr<ComponentObject>& object,
                  std::string& description);

}  // namespace tarnwick

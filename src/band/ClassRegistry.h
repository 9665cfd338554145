// Where component classes are registered: a ProgID, its class id and the
// library file that serves it, in the layout COM reads on Windows:
//
//   <classes>\<ProgID>                         (default) = description
//   <classes>\<ProgID>\CLSID                   (default) = {class id}
//   <classes>\CLSID\{class id}                 (default) = description
//   <classes>\CLSID\{class id}\ProgID          (default) = ProgID
//   <classes>\CLSID\{class id}\InprocServer32  (default) = library file,
//                                              ThreadingModel = Apartment
//
// <classes> is HKEY_CLASSES_ROOT on Windows (the registry itself, where COM
// looks), and on POSIX the current user's Software\Classes key of the
// settings store, so a user registers components without rights on the
// machine-wide store.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "settings/SettingsStore.h"

namespace tarnwick {

struct ClassRegistration {
  std::string progId;
  std::string clsid;  // "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}"
  std::string description;
  std::filesystem::path file;
};

inline std::string ProgIdKey(std::string_view progId) { return std::string(progId); }
inline std::string ClassIdKey(std::string_view clsid) { return "CLSID\\" + std::string(clsid); }

// Status codes as the registry returns them.
long WriteClassRegistration(SettingsStore& store, const ClassRegistration& registration);
long RemoveClassRegistration(SettingsStore& store, std::string_view progId, std::string_view clsid);
// The library file registered for `progId`, if any.
std::optional<std::filesystem::path> RegisteredServerFile(SettingsStore& store, std::string_view progId);

}  // namespace tarnwick

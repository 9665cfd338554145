// The band's registration: its class (ProgID, class id, library file) and
// its place among the browser's toolbars. Both go to the machine's keys; a
// user who may not write those gets them in his own keys, which the browser
// and COM read as well.
#include <windows.h>
// After windows.h, which it needs.
#include <olectl.h>

#include <filesystem>
#include <string>

#include "Module.h"

namespace tarnwick::twtb {
namespace {

constexpr const char* kClasses = "Software\\Classes\\";
constexpr const char* kToolbars = "Software\\Microsoft\\Internet Explorer\\Toolbar";

std::string LibraryFile() {
  char name[MAX_PATH] = {};
  const DWORD length = GetModuleFileNameA(ThisModule(), name, MAX_PATH);
  return std::string(name, length);
}

LSTATUS SetText(HKEY hive, const std::string& key, const char* name, const std::string& value) {
  return RegSetKeyValueA(hive, key.c_str(), name, REG_SZ, value.c_str(), static_cast<DWORD>(value.size() + 1));
}

// The machine's keys when this user may write them, else the user's own.
HKEY WritableHive() {
  HKEY key = nullptr;
  const LSTATUS status = RegCreateKeyExA(HKEY_LOCAL_MACHINE, (std::string(kClasses) + "CLSID").c_str(), 0, nullptr, 0,
                                         KEY_WRITE, nullptr, &key, nullptr);
  if (status != ERROR_SUCCESS) return HKEY_CURRENT_USER;
  RegCloseKey(key);
  return HKEY_LOCAL_MACHINE;
}

LSTATUS Register(HKEY hive) {
  const std::string progId = std::string(kClasses) + kToolBarProgId;
  const std::string clsid = std::string(kClasses) + "CLSID\\" + kToolBarClassId;
  const std::pair<std::string, std::pair<const char*, std::string>> values[] = {
      {progId, {nullptr, kToolBarDescription}},
      {progId + "\\CLSID", {nullptr, kToolBarClassId}},
      {clsid, {nullptr, kToolBarDescription}},
      {clsid + "\\ProgID", {nullptr, kToolBarProgId}},
      {clsid + "\\InprocServer32", {nullptr, LibraryFile()}},
      {clsid + "\\InprocServer32", {"ThreadingModel", "Apartment"}},
      {kToolbars, {kToolBarClassId, kToolBarDescription}},
  };
  for (const auto& [key, value] : values) {
    const LSTATUS status = SetText(hive, key, value.first, value.second);
    if (status != ERROR_SUCCESS) return status;
  }
  return ERROR_SUCCESS;
}

// Removes what Register wrote from `hive`; what is not there is no failure.
LSTATUS Unregister(HKEY hive) {
  LSTATUS result = ERROR_SUCCESS;
  const auto keep = [&result](LSTATUS status) {
    if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND) result = status;
  };
  keep(RegDeleteTreeA(hive, (std::string(kClasses) + kToolBarProgId).c_str()));
  keep(RegDeleteTreeA(hive, (std::string(kClasses) + "CLSID\\" + kToolBarClassId).c_str()));
  HKEY toolbars = nullptr;
  if (RegOpenKeyExA(hive, kToolbars, 0, KEY_SET_VALUE, &toolbars) == ERROR_SUCCESS) {
    keep(RegDeleteValueA(toolbars, kToolBarClassId));
    RegCloseKey(toolbars);
  }
  return result;
}

}  // namespace
}  // namespace tarnwick::twtb

using namespace tarnwick::twtb;

STDAPI DllRegisterServer() {
  const LSTATUS status = Register(WritableHive());
  return status == ERROR_SUCCESS ? S_OK : SELFREG_E_CLASS;
}

// Both hives: the band may have been registered by an administrator and by
// the user.
STDAPI DllUnregisterServer() {
  LSTATUS status = Unregister(HKEY_CURRENT_USER);
  const LSTATUS machine = Unregister(HKEY_LOCAL_MACHINE);
  if (machine != ERROR_ACCESS_DENIED && machine != ERROR_SUCCESS) status = machine;
  return status == ERROR_SUCCESS ? S_OK : SELFREG_E_CLASS;
}

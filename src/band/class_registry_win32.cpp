#include <windows.h>

#include "band/ClassRegistry.h"

namespace tarnwick {
namespace {

long SetText(const std::string& key, const char* name, std::string_view text) {
  const std::string value(text);
  return RegSetKeyValueA(HKEY_CLASSES_ROOT, key.c_str(), name, REG_SZ, value.c_str(),
                         static_cast<DWORD>(value.size() + 1));
}

std::optional<std::string> ReadDefault(const std::string& key) {
  char text[MAX_PATH * 2] = {};
  DWORD size = sizeof text - 1;
  if (RegGetValueA(HKEY_CLASSES_ROOT, key.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, text, &size) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  if (text[0] == '\0') return std::nullopt;
  return std::string(text);
}

}  // namespace

long WriteClassRegistration(SettingsStore&, const ClassRegistration& registration) {
  const std::string progId = ProgIdKey(registration.progId);
  const std::string clsid = ClassIdKey(registration.clsid);
  long status = SetText(progId, nullptr, registration.description);
  if (status == ERROR_SUCCESS) status = SetText(progId + "\\CLSID", nullptr, registration.clsid);
  if (status == ERROR_SUCCESS) status = SetText(clsid, nullptr, registration.description);
  if (status == ERROR_SUCCESS) status = SetText(clsid + "\\ProgID", nullptr, registration.progId);
  if (status == ERROR_SUCCESS) status = SetText(clsid + "\\InprocServer32", nullptr, registration.file.string());
  if (status == ERROR_SUCCESS) status = SetText(clsid + "\\InprocServer32", "ThreadingModel", "Apartment");
  return status;
}

long RemoveClassRegistration(SettingsStore&, std::string_view progId, std::string_view clsid) {
  // An empty name would make the key below the whole of HKEY_CLASSES_ROOT.
  if (progId.empty() || clsid.empty()) return ERROR_INVALID_PARAMETER;
  long result = ERROR_SUCCESS;
  for (const std::string& key : {ProgIdKey(progId), ClassIdKey(clsid)}) {
    const LONG status = RegDeleteTreeA(HKEY_CLASSES_ROOT, key.c_str());
    if (status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND) continue;
    result = status;
  }
  return result;
}

std::optional<std::filesystem::path> RegisteredServerFile(SettingsStore&, std::string_view progId) {
  const auto clsid = ReadDefault(ProgIdKey(progId) + "\\CLSID");
  if (!clsid) return std::nullopt;
  const auto file = ReadDefault(ClassIdKey(*clsid) + "\\InprocServer32");
  if (!file) return std::nullopt;
  return std::filesystem::path(*file);
}

}  // namespace tarnwick

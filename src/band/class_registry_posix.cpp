#include "band/ClassRegistry.h"
#include "settings/mdlRegistry.h"

namespace tarnwick {
namespace {

constexpr std::string_view kClasses = "Software\\Classes\\";

std::string Under(const std::string& key) { return std::string(kClasses) + key; }

long SetDefault(SettingsStore& store, const std::string& key, std::string_view text) {
  std::unique_ptr<RegistryKey> handle;
  const long status = store.CreateKey(Root::CurrentUser, Under(key), handle);
  if (status != kErrorSuccess) return status;
  return mdlRegistry::WriteValue(*handle, "", kRegSz, std::string(text));
}

std::optional<std::string> ReadDefault(SettingsStore& store, const std::string& key) {
  std::unique_ptr<RegistryKey> handle;
  if (store.OpenKey(Root::CurrentUser, Under(key), Access::Read, handle) != kErrorSuccess) return std::nullopt;
  SettingValue value;
  if (mdlRegistry::ReadValue(*handle, "", value) != kErrorSuccess) return std::nullopt;
  const auto* text = std::get_if<std::string>(&value);
  if (text == nullptr || text->empty()) return std::nullopt;
  return *text;
}

}  // namespace

long WriteClassRegistration(SettingsStore& store, const ClassRegistration& registration) {
  const std::string progId = ProgIdKey(registration.progId);
  const std::string clsid = ClassIdKey(registration.clsid);
  long status = SetDefault(store, progId, registration.description);
  if (status == kErrorSuccess) status = SetDefault(store, progId + "\\CLSID", registration.clsid);
  if (status == kErrorSuccess) status = SetDefault(store, clsid, registration.description);
  if (status == kErrorSuccess) status = SetDefault(store, clsid + "\\ProgID", registration.progId);
  if (status == kErrorSuccess) status = SetDefault(store, clsid + "\\InprocServer32", registration.file.string());
  if (status != kErrorSuccess) return status;
  std::unique_ptr<RegistryKey> server;
  status = store.OpenKey(Root::CurrentUser, Under(clsid + "\\InprocServer32"), Access::Write, server);
  if (status != kErrorSuccess) return status;
  return mdlRegistry::WriteValue(*server, "ThreadingModel", kRegSz, std::string("Apartment"));
}

// The store keeps keys once made, so a registration is removed by removing
// its values: an empty key names no class and no file.
long RemoveClassRegistration(SettingsStore& store, std::string_view progId, std::string_view clsid) {
  const std::string progIdKey = ProgIdKey(progId);
  const std::string clsidKey = ClassIdKey(clsid);
  long result = kErrorSuccess;
  const auto remove = [&](const std::string& key, std::string_view name) {
    std::unique_ptr<RegistryKey> handle;
    long status = store.OpenKey(Root::CurrentUser, Under(key), Access::Write, handle);
    if (status == kErrorSuccess) status = handle->DeleteValue(name);
    if (status != kErrorSuccess && status != kErrorFileNotFound) result = status;
  };
  remove(progIdKey, "");
  remove(progIdKey + "\\CLSID", "");
  remove(clsidKey, "");
  remove(clsidKey + "\\ProgID", "");
  remove(clsidKey + "\\InprocServer32", "");
  remove(clsidKey + "\\InprocServer32", "ThreadingModel");
  return result;
}

std::optional<std::filesystem::path> RegisteredServerFile(SettingsStore& store, std::string_view progId) {
  const auto clsid = ReadDefault(store, ProgIdKey(progId) + "\\CLSID");
  if (!clsid) return std::nullopt;
  const auto file = ReadDefault(store, ClassIdKey(*clsid) + "\\InprocServer32");
  if (!file) return std::nullopt;
  return std::filesystem::path(*file);
}

}  // namespace tarnwick

#include "settings/mdlRegistry.h"

#include <memory>

namespace tarnwick::mdlRegistry {

long ReadValue(RegistryKey& key, std::string_view name, SettingValue& value) {
  std::uint32_t type = 0;
  std::uint32_t size = 0;
  if (const long status = key.QueryValueInfo(name, type, size); status != kErrorSuccess) return status;
  std::string data;
  if (type == kRegSz) {
    const long status = key.QueryValueData(name, size, data);
    // The reported size counts the terminator; the text is what precedes it.
    value = status == kErrorSuccess && !data.empty() ? data.substr(0, data.size() - 1) : std::string();
    return status;
  }
  if (type == kRegDword) {
    const long status = key.QueryValueData(name, 4, data);
    if (status != kErrorSuccess) return status;
    if (data.size() != 4) return kErrorInvalidData;
    std::uint32_t number = 0;
    for (int i = 3; i >= 0; --i) number = number << 8 | static_cast<unsigned char>(data[i]);
    value = static_cast<std::int32_t>(number);
    return kErrorSuccess;
  }
  return -1;
}

long WriteValue(RegistryKey& key, std::string_view name, std::uint32_t type, const SettingValue& value) {
  if (type == kRegSz) return key.SetValue(name, kRegSz, ToText(value));
  if (type == kRegDword) {
    std::int32_t number = 0;
    try {
      number = ToLong(value);
    } catch (const ConversionError& error) {
      return error.number();
    }
    std::string bytes;
    for (int i = 0; i < 4; ++i) bytes += static_cast<char>((static_cast<std::uint32_t>(number) >> (8 * i)) & 0xFF);
    return key.SetValue(name, kRegDword, bytes);
  }
  return kErrorSuccess;
}

SettingValue GetSetting(SettingsStore& store, std::string_view keyPath, std::string_view name,
                        const SettingValue& defaultValue) {
  std::unique_ptr<RegistryKey> key;
  if (store.OpenKey(Root::CurrentUser, keyPath, Access::All, key) != kErrorSuccess) return defaultValue;
  SettingValue value;
  if (ReadValue(*key, name, value) != kErrorSuccess) return defaultValue;
  return value;
}

void SaveSetting(SettingsStore& store, std::string_view keyPath, std::string_view name, const SettingValue& value,
                 std::uint32_t type) {
  std::unique_ptr<RegistryKey> key;
  if (store.CreateKey(Root::CurrentUser, keyPath, key) != kErrorSuccess) return;
  WriteValue(*key, name, type, value);
}

bool DeleteValue(SettingsStore& store, Root root, std::string_view keyPath, std::string_view name) {
  std::unique_ptr<RegistryKey> key;
  if (store.OpenKey(root, keyPath, Access::Write, key) != kErrorSuccess) return false;
  return key->DeleteValue(name) == kErrorSuccess;
}

}  // namespace tarnwick::mdlRegistry

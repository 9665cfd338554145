// The registry module: the five operations through which every part of the
// program reads and writes its settings.
#pragma once

#include <cstdint>
#include <string_view>

#include "settings/SettingValue.h"
#include "settings/SettingsStore.h"

namespace tarnwick::mdlRegistry {

// The key below the current user that holds every setting of the toolbar.
inline constexpr std::string_view kSettingsKey = "Software\\Tarnwick\\Toolbar\\Settings";

// Text values come back without their terminator, 32-bit numbers as numbers.
// Any other type gives -1; a missing value the store's status.
long ReadValue(RegistryKey& key, std::string_view name, SettingValue& value);
// kRegSz writes the value as text (no terminator counted), kRegDword as a
// 32-bit number; other types write nothing.
long WriteValue(RegistryKey& key, std::string_view name, std::uint32_t type, const SettingValue& value);
// The value below the current user, or `defaultValue` when it cannot be read.
SettingValue GetSetting(SettingsStore& store, std::string_view keyPath, std::string_view name,
                        const SettingValue& defaultValue);
// Creates the key when needed and writes the value; failures are ignored.
void SaveSetting(SettingsStore& store, std::string_view keyPath, std::string_view name, const SettingValue& value,
                 std::uint32_t type);
// True when the value existed and was deleted.
bool DeleteValue(SettingsStore& store, Root root, std::string_view keyPath, std::string_view name);

}  // namespace tarnwick::mdlRegistry

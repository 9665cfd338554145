// Windows settings store: the registry itself, through its ANSI entry points.
#include <windows.h>

#include "settings/SettingsStore.h"

namespace tarnwick {
namespace {

HKEY RootKey(Root root) { return root == Root::CurrentUser ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE; }

REGSAM Rights(Access access) {
  switch (access) {
    case Access::Read: return KEY_READ;
    case Access::Write: return KEY_WRITE;
    case Access::All: return KEY_ALL_ACCESS;
  }
  return KEY_READ;
}

class Win32Key final : public RegistryKey {
 public:
  explicit Win32Key(HKEY key) : key_(key) {}
  ~Win32Key() override { RegCloseKey(key_); }
  Win32Key(const Win32Key&) = delete;
  Win32Key& operator=(const Win32Key&) = delete;

  long QueryValueInfo(std::string_view name, std::uint32_t& type, std::uint32_t& size) override {
    DWORD kind = 0;
    DWORD bytes = 0;
    const LONG status = RegQueryValueExA(key_, std::string(name).c_str(), nullptr, &kind, nullptr, &bytes);
    type = kind;
    size = bytes;
    return status;
  }

  long QueryValueData(std::string_view name, std::uint32_t size, std::string& data) override {
    std::string buffer(size, '\0');
    DWORD bytes = size;
    const LONG status = RegQueryValueExA(key_, std::string(name).c_str(), nullptr, nullptr,
                                         reinterpret_cast<BYTE*>(buffer.data()), &bytes);
    if (status == ERROR_SUCCESS) {
      buffer.resize(bytes);
      data = buffer;
    }
    return status;
  }

  long SetValue(std::string_view name, std::uint32_t type, std::string_view data) override {
    return RegSetValueExA(key_, std::string(name).c_str(), 0, type, reinterpret_cast<const BYTE*>(data.data()),
                          static_cast<DWORD>(data.size()));
  }

  long DeleteValue(std::string_view name) override { return RegDeleteValueA(key_, std::string(name).c_str()); }

  long ValueNames(std::vector<std::string>& names) override {
    names.clear();
    for (DWORD index = 0;; ++index) {
      char name[16384];
      DWORD length = sizeof name;
      const LONG status = RegEnumValueA(key_, index, name, &length, nullptr, nullptr, nullptr, nullptr);
      if (status == ERROR_NO_MORE_ITEMS) return ERROR_SUCCESS;
      if (status != ERROR_SUCCESS) return status;
      names.emplace_back(name, length);
    }
  }

 private:
  HKEY key_;
};

class Win32Store final : public SettingsStore {
 public:
  long OpenKey(Root root, std::string_view path, Access access, std::unique_ptr<RegistryKey>& key) override {
    HKEY handle = nullptr;
    const LONG status = RegOpenKeyExA(RootKey(root), std::string(path).c_str(), 0, Rights(access), &handle);
    if (status == ERROR_SUCCESS) key = std::make_unique<Win32Key>(handle);
    return status;
  }

  long CreateKey(Root root, std::string_view path, std::unique_ptr<RegistryKey>& key) override {
    HKEY handle = nullptr;
    const LONG status = RegCreateKeyExA(RootKey(root), std::string(path).c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                        KEY_ALL_ACCESS, nullptr, &handle, nullptr);
    if (status == ERROR_SUCCESS) key = std::make_unique<Win32Key>(handle);
    return status;
  }
};

}  // namespace

std::unique_ptr<SettingsStore> MakePlatformSettingsStore(Log&) { return std::make_unique<Win32Store>(); }

}  // namespace tarnwick

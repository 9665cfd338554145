// Settings store port: typed values under a root and a key path, with the
// registry's semantics (status codes, value types, key handles). Windows uses
// the registry itself; POSIX a registry-format text file per root.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick {

class Log;

enum class Root { CurrentUser, LocalMachine };
enum class Access { Read, Write, All };

// Value types, numbered as the registry numbers them.
inline constexpr std::uint32_t kRegNone = 0;
inline constexpr std::uint32_t kRegSz = 1;
inline constexpr std::uint32_t kRegBinary = 3;
inline constexpr std::uint32_t kRegDword = 4;

// Status codes, numbered as the registry numbers them.
inline constexpr long kErrorSuccess = 0;
inline constexpr long kErrorFileNotFound = 2;
inline constexpr long kErrorAccessDenied = 5;
inline constexpr long kErrorInvalidData = 13;
inline constexpr long kErrorMoreData = 234;
inline constexpr long kErrorRegistryIoFailed = 1016;

class RegistryKey {
 public:
  virtual ~RegistryKey() = default;
  // The value's type and data size as the registry reports them: a text
  // value's size counts its terminating NUL.
  virtual long QueryValueInfo(std::string_view name, std::uint32_t& type, std::uint32_t& size) = 0;
  // Up to `size` bytes of the value's data (a text value with its NUL).
  virtual long QueryValueData(std::string_view name, std::uint32_t size, std::string& data) = 0;
  virtual long SetValue(std::string_view name, std::uint32_t type, std::string_view data) = 0;
  virtual long DeleteValue(std::string_view name) = 0;
  // Names of the key's values, in stored order.
  virtual long ValueNames(std::vector<std::string>& names) = 0;
};

class SettingsStore {
 public:
  virtual ~SettingsStore() = default;
  // Opens an existing key; kErrorFileNotFound when it does not exist.
  virtual long OpenKey(Root root, std::string_view path, Access access, std::unique_ptr<RegistryKey>& key) = 0;
  // Opens the key, creating it (and the keys above it) when missing.
  virtual long CreateKey(Root root, std::string_view path, std::unique_ptr<RegistryKey>& key) = 0;
  // A number that changes whenever the values under `root` may have changed
  // (another program's writes included) since it was last asked; nullopt
  // when the store cannot tell without reading them, and then a caller that
  // keeps values must read them again.
  virtual std::optional<std::uint64_t> Revision(Root /*root*/) { return std::nullopt; }
  // Where to tell the person, once, that the store's file cannot be read (a
  // command line prints it); the debug log has it either way. A store
  // without a file of its own never calls it.
  virtual void ReportProblemsTo(std::function<void(const std::string&)> /*report*/) {}
};

// The platform's store; `log` receives its debug lines.
std::unique_ptr<SettingsStore> MakePlatformSettingsStore(Log& log);

}  // namespace tarnwick

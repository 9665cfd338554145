#include "Install.h"

#include <cstdlib>
#include <fstream>
#include <system_error>

#include <nlohmann/json.hpp>

namespace tarnwick::host {

std::filesystem::path ManifestFolder(const std::optional<std::filesystem::path>& userDataDir) {
  if (userDataDir) return *userDataDir / "NativeMessagingHosts";
  const char* config = std::getenv("XDG_CONFIG_HOME");
  const char* home = std::getenv("HOME");
  std::filesystem::path base = config != nullptr && *config != '\0' ? std::filesystem::path(config)
                               : home != nullptr                    ? std::filesystem::path(home) / ".config"
                                                                    : std::filesystem::path(".config");
  return base / "chromium" / "NativeMessagingHosts";
}

std::string ManifestText(const std::filesystem::path& executable) {
  const nlohmann::ordered_json manifest{
      {"name", kHostName},
      {"description", "Tarnwick Toolbar"},
      {"path", executable.string()},
      {"type", "stdio"},
      {"allowed_origins", {std::string("chrome-extension://") + TARNWICK_EXTENSION_ID + "/"}}};
  return manifest.dump(2) + "\n";
}

std::optional<std::filesystem::path> WriteManifest(const std::filesystem::path& folder,
                                                   const std::filesystem::path& executable, std::string& error) {
  std::error_code failure;
  std::filesystem::create_directories(folder, failure);
  if (failure) {
    error = "cannot make " + folder.string() + ": " + failure.message();
    return std::nullopt;
  }
  const auto file = folder / (std::string(kHostName) + ".json");
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out << ManifestText(executable);
  out.close();
  if (!out) {
    error = "cannot write " + file.string();
    return std::nullopt;
  }
  return file;
}

}  // namespace tarnwick::host

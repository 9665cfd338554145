// `tarnwick-host --install`: the native messaging manifest that lets the
// extension start this program, written for Chromium per user.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace tarnwick::host {

// The name the extension connects to; the manifest file is this + ".json".
inline constexpr const char* kHostName = "com.tarnwick.toolbar";

// The folder Chromium reads per-user manifests from: DIR/NativeMessagingHosts
// of a profile folder given with --user-data-dir, else
// $XDG_CONFIG_HOME/chromium/NativeMessagingHosts (~/.config by default).
std::filesystem::path ManifestFolder(const std::optional<std::filesystem::path>& userDataDir);

// The manifest's text: this program at `executable`, for the extension only.
std::string ManifestText(const std::filesystem::path& executable);

// Writes the manifest into `folder` (made when missing); the manifest's path,
// or nullopt with `error` saying why not.
std::optional<std::filesystem::path> WriteManifest(const std::filesystem::path& folder,
                                                   const std::filesystem::path& executable, std::string& error);

}  // namespace tarnwick::host

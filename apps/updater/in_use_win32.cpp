#include <windows.h>

#include <thread>

#include "Updater.h"

namespace tarnwick::updater {

// A loaded library cannot be opened for exclusive access.
bool ProgramFileInUse(const std::filesystem::path& file) {
  const HANDLE handle =
      CreateFileA(file.string().c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return GetLastError() == ERROR_SHARING_VIOLATION;
  CloseHandle(handle);
  return false;
}

// The box stays until the person closes it or the updater ends; the wait for
// the browser goes on behind it.
void AskToCloseBrowser() {
  std::thread([] {
    MessageBoxA(nullptr,
                "The Tarnwick Toolbar update is ready to install. Please close all Internet Explorer windows: it is "
                "installed as soon as they are closed.",
                "Tarnwick Toolbar", MB_OK | MB_ICONINFORMATION | MB_SETFOREGROUND | MB_TOPMOST);
  }).detach();
}

}  // namespace tarnwick::updater

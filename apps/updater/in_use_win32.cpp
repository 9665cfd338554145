#include <windows.h>

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

}  // namespace tarnwick::updater

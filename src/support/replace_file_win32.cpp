#include <windows.h>
// windows.h names its own ReplaceFileA/W "ReplaceFile"; ours is meant here.
#undef ReplaceFile

#include <algorithm>

#include "support/ReplaceFile.h"

namespace tarnwick {
namespace {

std::error_code LastError() { return {static_cast<int>(::GetLastError()), std::system_category()}; }

}  // namespace

std::optional<ReplaceFailure> ReplaceFile(const std::filesystem::path& path, std::string_view content,
                                          std::string_view temporarySuffix,
                                          std::filesystem::perms /*newFilePermissions*/) {
  const std::wstring temporary = path.wstring() + std::filesystem::path(std::string(temporarySuffix)).wstring();
  HANDLE file =
      ::CreateFileW(temporary.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return ReplaceFailure{ReplaceFailure::Stage::Writing, LastError()};
  std::error_code error;
  std::size_t written = 0;
  while (!error && written < content.size()) {
    const DWORD chunk = static_cast<DWORD>(std::min<std::size_t>(content.size() - written, 1u << 30));
    DWORD done = 0;
    if (!::WriteFile(file, content.data() + written, chunk, &done, nullptr) || done == 0) error = LastError();
    written += done;
  }
  if (!error && !::FlushFileBuffers(file)) error = LastError();
  ::CloseHandle(file);
  auto stage = ReplaceFailure::Stage::Writing;
  if (!error &&
      !::MoveFileExW(temporary.c_str(), path.wstring().c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
    error = LastError();
    stage = ReplaceFailure::Stage::Renaming;
  }
  if (!error) return std::nullopt;
  ::DeleteFileW(temporary.c_str());
  return ReplaceFailure{stage, error};
}

}  // namespace tarnwick

#include <windows.h>

#include "support/FileMoves.h"

namespace tarnwick {
namespace {

std::error_code LastError() { return {static_cast<int>(::GetLastError()), std::system_category()}; }

}  // namespace

std::error_code MoveFileOver(const std::filesystem::path& from, const std::filesystem::path& to) {
  if (::MoveFileExW(from.wstring().c_str(), to.wstring().c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
    return {};
  }
  return LastError();
}

std::error_code RemoveFile(const std::filesystem::path& path) {
  const std::wstring name = path.wstring();
  const DWORD attributes = ::GetFileAttributesW(name.c_str());
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0) {
    ::SetFileAttributesW(name.c_str(), attributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY));
  }
  return ::DeleteFileW(name.c_str()) ? std::error_code() : LastError();
}

}  // namespace tarnwick

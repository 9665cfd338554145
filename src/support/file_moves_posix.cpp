#include <cerrno>

#include "support/FileMoves.h"
#include "support/SystemCalls.h"

namespace tarnwick {
namespace {

std::error_code LastError() { return {errno != 0 ? errno : EIO, std::generic_category()}; }

}  // namespace

std::error_code MoveFileOver(const std::filesystem::path& from, const std::filesystem::path& to) {
  return sys::Rename(from.c_str(), to.c_str()) == 0 ? std::error_code() : LastError();
}

// Unlinking needs no write permission on the file itself.
std::error_code RemoveFile(const std::filesystem::path& path) {
  return sys::Unlink(path.c_str()) == 0 ? std::error_code() : LastError();
}

}  // namespace tarnwick

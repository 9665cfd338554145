#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

#include "support/ReplaceFile.h"
#include "support/SystemCalls.h"

namespace tarnwick {
namespace {

ReplaceFailure Failure(ReplaceFailure::Stage stage, int error) {
  return {stage, {error != 0 ? error : EIO, std::generic_category()}};
}

}  // namespace

std::optional<ReplaceFailure> ReplaceFile(const std::filesystem::path& path, std::string_view content,
                                          std::string_view temporarySuffix, std::filesystem::perms newFilePermissions) {
  auto mode = static_cast<mode_t>(newFilePermissions);
  struct stat old {};
  if (::stat(path.c_str(), &old) == 0) mode = old.st_mode & 07777;

  const std::string temporary = path.string() + std::string(temporarySuffix);
  const int fd = sys::Open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  if (fd < 0) return Failure(ReplaceFailure::Stage::Writing, errno);
  int error = 0;
  std::size_t written = 0;
  while (error == 0 && written < content.size()) {
    const ssize_t n = sys::Write(fd, content.data() + written, content.size() - written);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0)
      error = n < 0 ? errno : ENOSPC;
    else
      written += static_cast<std::size_t>(n);
  }
  // The mode is set on the descriptor before the name appears, so the file
  // is never visible with the wrong permissions.
  if (error == 0 && ::fchmod(fd, mode) != 0) error = errno;
  if (error == 0 && sys::Fsync(fd) != 0) error = errno;
  if (sys::Close(fd) != 0 && error == 0) error = errno;
  auto stage = ReplaceFailure::Stage::Writing;
  if (error == 0 && sys::Rename(temporary.c_str(), path.c_str()) != 0) {
    error = errno;
    stage = ReplaceFailure::Stage::Renaming;
  }
  if (error != 0) {
    sys::Unlink(temporary.c_str());
    return Failure(stage, error);
  }
  return std::nullopt;
}

}  // namespace tarnwick

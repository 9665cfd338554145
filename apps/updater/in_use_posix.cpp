#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "Updater.h"

namespace tarnwick::updater {

// A running program holds a shared lock on its own file; the file is free
// once an exclusive lock can be had.
bool ProgramFileInUse(const std::filesystem::path& file) {
  const int fd = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  const bool busy = ::flock(fd, LOCK_EX | LOCK_NB) != 0;
  ::close(fd);
  return busy;
}

}  // namespace tarnwick::updater

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <iostream>

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

void AskToCloseBrowser() { std::cerr << "updater: the toolbar is in use: close the browser to finish the update\n"; }

}  // namespace tarnwick::updater

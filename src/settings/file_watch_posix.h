// Whether a file may have changed since it was last read, for one system
// call where asking the file system would take one per folder of its path:
// inotify watches on the file's folder and on each folder above it, for the
// names that lead to the file (so the file created, replaced by a rename,
// written, its permissions changed, or a folder on the way created, renamed
// or removed). Files on network and user-space file systems, whose changes
// other machines make inotify does not report, are never taken as unchanged.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tarnwick {

class FileWatch {
 public:
  explicit FileWatch(const std::filesystem::path& file);
  ~FileWatch();
  FileWatch(const FileWatch&) = delete;
  FileWatch& operator=(const FileWatch&) = delete;

  // True when nothing that could change the file happened since the last
  // call that answered false. False otherwise, and the watch then starts
  // afresh: the caller reads the file after this call, and a change made
  // after it is seen by the next.
  bool Unchanged();

 private:
  // Watches the path anew; false when it cannot be watched.
  bool Arm();
  // Reads what the watches report; true when it may concern the file.
  bool Changed();

  std::filesystem::path file_;
  int fd_ = -1;
  bool armed_ = false;
  // For each watch descriptor (as a slot), the name in its folder that
  // leads to the file.
  std::vector<std::pair<int, std::string>> watches_;
};

}  // namespace tarnwick

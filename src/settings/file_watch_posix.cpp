#include "settings/file_watch_posix.h"

#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

namespace tarnwick {
namespace {

// What may change the file or the way to it: in its own folder anything done
// to it; in the folders above, the folder on the way created, removed,
// renamed or its permissions changed.
constexpr std::uint32_t kOnTheWay =
    IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF;
constexpr std::uint32_t kInItsFolder = kOnTheWay | IN_MODIFY | IN_CLOSE_WRITE;

// File systems whose changes made elsewhere inotify does not hear of.
bool IsRemote(const std::filesystem::path& folder) {
  struct statfs info {};
  if (::statfs(folder.c_str(), &info) != 0) return true;
  constexpr std::array<unsigned long, 11> kRemote = {
      0x6969,      // NFS
      0x517B,      // SMB
      0xFF534D42,  // CIFS
      0xFE534D42,  // SMB2
      0x65735546,  // FUSE
      0x00C36400,  // Ceph
      0x01021997,  // 9P
      0x5346414F,  // AFS
      0x73757245,  // Coda
      0x564C,      // NCP
      0x47504653,  // GPFS
  };
  const auto type = static_cast<unsigned long>(info.f_type);
  return std::find(kRemote.begin(), kRemote.end(), type) != kRemote.end();
}

}  // namespace

FileWatch::FileWatch(const std::filesystem::path& file) {
  std::error_code error;
  file_ = std::filesystem::absolute(file, error).lexically_normal();
  if (error) file_.clear();
}

FileWatch::~FileWatch() {
  if (fd_ >= 0) ::close(fd_);
}

bool FileWatch::Unchanged() {
  if (armed_ && !Changed()) return true;
  armed_ = Arm();
  return false;
}

bool FileWatch::Arm() {
  if (fd_ >= 0) ::close(fd_);  // drops the old watches and what they reported
  watches_.clear();
  fd_ = file_.empty() ? -1 : ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  if (fd_ < 0) return false;
  bool checkedFileSystem = false;
  std::filesystem::path next = file_;
  for (std::filesystem::path folder = file_.parent_path();; folder = folder.parent_path()) {
    const int watch = ::inotify_add_watch(fd_, folder.c_str(), next == file_ ? kInItsFolder : kOnTheWay);
    if (watch >= 0) {
      if (!checkedFileSystem && IsRemote(folder)) return false;
      checkedFileSystem = true;
      watches_.emplace_back(watch, next.filename().string());
    } else if (errno != ENOENT && errno != ENOTDIR) {
      return false;  // no permission, or no watches left: read every time
    }
    if (folder == folder.parent_path()) break;
    next = folder;
  }
  return !watches_.empty();
}

bool FileWatch::Changed() {
  // Asking how much there is to read costs less than a read that finds
  // nothing, the common answer.
  int pending = 0;
  if (::ioctl(fd_, FIONREAD, &pending) == 0 && pending == 0) return false;
  alignas(inotify_event) char buffer[4096];
  bool changed = false;
  for (;;) {
    const ssize_t size = ::read(fd_, buffer, sizeof buffer);
    if (size < 0 && errno == EINTR) continue;
    if (size < 0) return changed || errno != EAGAIN;
    if (size == 0) return true;
    for (ssize_t at = 0; at < size;) {
      inotify_event event;
      std::memcpy(&event, buffer + at, sizeof event);
      const char* name = buffer + at + sizeof event;
      at += static_cast<ssize_t>(sizeof event + event.len);
      const int descriptor = event.wd;
      const auto watch = std::find_if(watches_.begin(), watches_.end(),
                                      [descriptor](const auto& entry) { return entry.first == descriptor; });
      // An event of the folder itself (no name), a lost event, a watch
      // gone, or one for the name on the way.
      changed = changed || event.len == 0 || (event.mask & (IN_Q_OVERFLOW | IN_IGNORED)) != 0 ||
                watch == watches_.end() || watch->second == std::string_view(name, ::strnlen(name, event.len));
    }
  }
}

}  // namespace tarnwick

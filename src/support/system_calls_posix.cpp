#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>

#include "support/SystemCalls.h"

namespace tarnwick::sys {
namespace {

struct Armed {
  int error = 0;  // 0: nothing armed
  int skip = 0;
  bool sticky = false;
  int calls = 0;
};

constexpr auto kCalls = static_cast<std::size_t>(Call::Count);
std::array<Armed, kCalls> armed;
std::atomic<bool> anyArmed{false};

// True (with errno set) when this call is to fail.
bool Fails(Call call) {
  Armed& slot = armed[static_cast<std::size_t>(call)];
  ++slot.calls;
  if (!anyArmed.load(std::memory_order_relaxed) || slot.error == 0) return false;
  if (slot.skip > 0) {
    --slot.skip;
    return false;
  }
  errno = slot.error;
  if (!slot.sticky) slot.error = 0;
  return true;
}

}  // namespace

int Open(const char* path, int flags, mode_t mode) { return Fails(Call::Open) ? -1 : ::open(path, flags, mode); }
ssize_t Read(int fd, void* buffer, std::size_t size) { return Fails(Call::Read) ? -1 : ::read(fd, buffer, size); }
ssize_t Write(int fd, const void* data, std::size_t size) { return Fails(Call::Write) ? -1 : ::write(fd, data, size); }
int Fsync(int fd) { return Fails(Call::Fsync) ? -1 : ::fsync(fd); }
int Close(int fd) {
  if (Fails(Call::Close)) {
    ::close(fd);  // the descriptor is gone either way, as after EIO
    return -1;
  }
  return ::close(fd);
}
int Rename(const char* from, const char* to) { return Fails(Call::Rename) ? -1 : ::rename(from, to); }
int Unlink(const char* path) { return Fails(Call::Unlink) ? -1 : ::unlink(path); }

void InjectFailure(Call call, int error, int skip, bool sticky) {
  armed[static_cast<std::size_t>(call)] = {error, skip, sticky, armed[static_cast<std::size_t>(call)].calls};
  anyArmed = true;
}

void ClearInjectedFailures() {
  armed = {};
  anyArmed = false;
}

int CallCount(Call call) { return armed[static_cast<std::size_t>(call)].calls; }

}  // namespace tarnwick::sys

// The file-system calls that the POSIX backends make when they replace a
// file, through one table of functions, so that tests can make any of them
// fail (a full disk, a rename refused) and check that nothing is lost.
// Production code never arms a failure; the wrappers then cost one load.
#pragma once

#include <sys/types.h>

#include <cstddef>

namespace tarnwick::sys {

enum class Call { Open, Read, Write, Fsync, Close, Rename, Unlink, Count };

int Open(const char* path, int flags, mode_t mode);
ssize_t Read(int fd, void* buffer, std::size_t size);
ssize_t Write(int fd, const void* data, std::size_t size);
int Fsync(int fd);
int Close(int fd);
int Rename(const char* from, const char* to);
int Unlink(const char* path);

// Makes the `skip`+1-th next call of `call` fail with `error` (errno), once,
// or every time from then on when `sticky`. Tests only.
void InjectFailure(Call call, int error, int skip = 0, bool sticky = false);
// Forgets every armed failure.
void ClearInjectedFailures();
// How many calls of `call` were made since the last ClearInjectedFailures.
int CallCount(Call call);

}  // namespace tarnwick::sys

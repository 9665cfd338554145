#include "ReferenceServer.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tarnwick::testing {

std::string Quote(const std::filesystem::path& path) { return "'" + path.string() + "'"; }

ReferenceServer::ReferenceServer(const std::filesystem::path& db, const std::filesystem::path& data,
                                 const std::string& extraFlags) {
  int out[2];
  if (::pipe(out) != 0) return;
  pid_ = ::fork();
  if (pid_ == 0) {
    ::dup2(out[1], STDOUT_FILENO);
    ::close(out[0]);
    ::close(out[1]);
    const std::string command = std::string("exec ") + TARNWICK_SERVER + " serve --listen 127.0.0.1:0 --db " +
                                Quote(db) + " --data " + Quote(data) + " " + extraFlags + " 2>/dev/null";
    ::execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
    ::_exit(127);
  }
  ::close(out[1]);
  // The first line it prints is its address.
  pollfd ready{out[0], POLLIN, 0};
  char c = 0;
  while (::poll(&ready, 1, 10000) == 1 && ::read(out[0], &c, 1) == 1 && c != '\n') base_ += c;
  ::close(out[0]);
  if (!base_.starts_with("http://127.0.0.1:")) {
    ADD_FAILURE() << "the server did not start: " << base_;
    base_.clear();
  }
}

ReferenceServer::~ReferenceServer() {
  if (pid_ <= 0) return;
  ::kill(pid_, SIGTERM);
  int status = 0;
  ::waitpid(pid_, &status, 0);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the server did not stop cleanly";
}

}  // namespace tarnwick::testing

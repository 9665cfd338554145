// The reference server as built, in a process of its own on a loopback port
// it picks, for tests that run the programs end to end. Stopped (and checked
// to stop cleanly) when the object goes.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>

namespace tarnwick::testing {

class ReferenceServer {
 public:
  // Serves `data` from the database `db`; `extraFlags` go to serve as they are.
  ReferenceServer(const std::filesystem::path& db, const std::filesystem::path& data,
                  const std::string& extraFlags = {});
  ~ReferenceServer();
  ReferenceServer(const ReferenceServer&) = delete;
  ReferenceServer& operator=(const ReferenceServer&) = delete;

  // "http://127.0.0.1:PORT", or empty when it did not start.
  const std::string& Base() const { return base_; }

 private:
  pid_t pid_ = 0;
  std::string base_;
};

// A path in single quotes, for a shell command line.
std::string Quote(const std::filesystem::path& path);

}  // namespace tarnwick::testing

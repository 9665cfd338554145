#include "common/TestSupport.h"

#include <atomic>
#include <chrono>
#include <random>

namespace tarnwick::testing {

TempDir::TempDir() {
  static std::atomic<int> counter{0};
  std::random_device random;
  const auto stamp = std::chrono::steady_clock::now().time_since_epoch().count();
  path_ = std::filesystem::temp_directory_path() /
          ("tarnwick-test-" + std::to_string(stamp) + "-" + std::to_string(random()) + "-" + std::to_string(counter++));
  std::filesystem::create_directories(path_);
}

TempDir::~TempDir() {
  std::error_code error;
  std::filesystem::remove_all(path_, error);
}

TestProcess::TestProcess() = default;

}  // namespace tarnwick::testing

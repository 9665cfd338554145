#include <spawn.h>

#include "support/Shell.h"

extern char** environ;

namespace tarnwick {
namespace {

class PosixShell final : public Shell {
 public:
  bool StartProgram(const std::filesystem::path& program, WindowState) override {
    const std::string path = program.string();
    char* argv[] = {const_cast<char*>(path.c_str()), nullptr};
    pid_t pid = 0;
    return posix_spawn(&pid, path.c_str(), nullptr, nullptr, argv, environ) == 0;
  }
};

}  // namespace

std::unique_ptr<Shell> MakePlatformShell() { return std::make_unique<PosixShell>(); }

}  // namespace tarnwick

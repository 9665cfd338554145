#include <spawn.h>

#include "support/Shell.h"

extern char** environ;

namespace tarnwick {
namespace {

class PosixShell final : public Shell {
 public:
  using Shell::StartProgram;
  bool StartProgram(const std::filesystem::path& program, const std::vector<std::string>& arguments) override {
    std::string path = program.string();
    std::vector<std::string> args = arguments;
    std::vector<char*> argv{path.data()};
    for (auto& argument : args) argv.push_back(argument.data());
    argv.push_back(nullptr);
    pid_t pid = 0;
    return posix_spawn(&pid, path.c_str(), nullptr, nullptr, argv.data(), environ) == 0;
  }
};

}  // namespace

std::unique_ptr<Shell> MakePlatformShell() { return std::make_unique<PosixShell>(); }

}  // namespace tarnwick

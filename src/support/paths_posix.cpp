#include <unistd.h>

#include <cstdlib>
#include <system_error>

#include "ProductInfo.h"
#include "support/Paths.h"

namespace tarnwick {
namespace {

std::filesystem::path FromEnvironment(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr && *value != '\0' ? std::filesystem::path(value) : std::filesystem::path();
}

class PosixPaths final : public Paths {
 public:
  std::filesystem::path ProgramFolder() override {
    if (auto overridden = FromEnvironment("TARNWICK_PROGRAM_DIR"); !overridden.empty()) return overridden;
    return (RunningModuleFolder() / product::kProgramDirRelative).lexically_normal();
  }

  std::filesystem::path LocalAppDataFolder() override {
    if (auto state = FromEnvironment("XDG_STATE_HOME"); !state.empty()) return state;
    return FromEnvironment("HOME") / ".local" / "state";
  }
};

}  // namespace

std::unique_ptr<Paths> MakePlatformPaths() { return std::make_unique<PosixPaths>(); }

std::filesystem::path RunningModuleFolder() {
  std::error_code error;
  const auto executable = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) return std::filesystem::current_path(error);
  return executable.parent_path();
}

}  // namespace tarnwick

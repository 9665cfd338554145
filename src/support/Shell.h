// Shell port: starting another program without waiting for it.
#pragma once

#include <filesystem>
#include <memory>

namespace tarnwick {

class Shell {
 public:
  virtual ~Shell() = default;
  // Starts `program` with a minimized, focused window where windows exist;
  // true when it started.
  virtual bool StartProgram(const std::filesystem::path& program) = 0;
};

std::unique_ptr<Shell> MakePlatformShell();

}  // namespace tarnwick

// Shell port: starting another program without waiting for it.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace tarnwick {

class Shell {
 public:
  virtual ~Shell() = default;
  // Starts `program` with `arguments` (each passed as one argument, as the
  // program's argv sees it) with a minimized, focused window where windows
  // exist; true when it started.
  virtual bool StartProgram(const std::filesystem::path& program, const std::vector<std::string>& arguments) = 0;
  bool StartProgram(const std::filesystem::path& program) { return StartProgram(program, {}); }
};

std::unique_ptr<Shell> MakePlatformShell();

}  // namespace tarnwick

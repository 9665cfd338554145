// Shell port: starting another program without waiting for it.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace tarnwick {

// How a started program's window shows where windows exist; both take focus.
enum class WindowState { Minimized, Normal };

class Shell {
 public:
  virtual ~Shell() = default;
  // Starts `program` with `arguments` (each passed as one argument, as the
  // program's argv sees it), its window shown as `state` where windows
  // exist, without waiting for it; true when it started.
  virtual bool StartProgram(const std::filesystem::path& program, const std::vector<std::string>& arguments = {},
                            WindowState state = WindowState::Minimized) = 0;
};

std::unique_ptr<Shell> MakePlatformShell();

}  // namespace tarnwick

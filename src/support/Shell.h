// Shell port: starting another program without waiting for it.
#pragma once

#include <filesystem>
#include <memory>

namespace tarnwick {

// How a started program's window shows where windows exist; both take focus.
enum class WindowState { Minimized, Normal };

class Shell {
 public:
  virtual ~Shell() = default;
  // Starts `program` without waiting for it; true when it started.
  virtual bool StartProgram(const std::filesystem::path& program, WindowState state = WindowState::Minimized) = 0;
};

std::unique_ptr<Shell> MakePlatformShell();

}  // namespace tarnwick

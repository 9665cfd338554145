// The pieces every command of the `tarnwick` program shares.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "TerminalUi.h"
#include "band/ToolbarProcess.h"
#include "support/Clock.h"
#include "support/Paths.h"

namespace tarnwick::cli {

// Exit statuses, as virus scanners have them.
inline constexpr int kExitOk = 0;
inline constexpr int kExitFound = 1;
inline constexpr int kExitError = 2;

// The process-wide object over this machine's clock, folders and settings.
class Host {
 public:
  explicit Host(const std::string& serverFlag = {}, int unattendedAnswer = vbNo);
  ToolbarProcess& process() { return *process_; }

 private:
  std::unique_ptr<Clock> clock_;
  std::unique_ptr<Paths> paths_;
  TerminalUi ui_;
  std::unique_ptr<ToolbarProcess> process_;
};

int RunOptions(const std::vector<std::string>& args);

}  // namespace tarnwick::cli

// The pieces every command of the `tarnwick` program shares.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "TerminalUi.h"
#include "band/ToolbarProcess.h"
#include "support/Clock.h"
#include "support/Paths.h"
#include "support/Shell.h"

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
  TerminalUi& ui() { return ui_; }
  // What a band start does before any transfer: the updater housekeeping,
  // load the options, load the download form (swapping in a downloaded
  // component) and create the shared retrieval component. False, with the reason on standard error, when
  // transfers cannot work.
  bool StartTransfers();

 private:
  std::unique_ptr<Clock> clock_;
  std::unique_ptr<Paths> paths_;
  std::unique_ptr<Shell> shell_;
  TerminalUi ui_;
  std::unique_ptr<ToolbarProcess> process_;
};

// An option given without its value: the program says so and ends with
// kExitError.
class MissingOptionValue : public std::runtime_error {
 public:
  explicit MissingOptionValue(const std::string& name) : std::runtime_error(name + " needs a value") {}
};

// Takes "--name VALUE" from `args`; empty when absent. Throws
// MissingOptionValue when "--name" is last or another option follows it.
std::string TakeOption(std::vector<std::string>& args, const std::string& name);
// Takes "--name" from `args`.
bool TakeFlag(std::vector<std::string>& args, const std::string& name);

int RunOptions(const std::vector<std::string>& args);
int RunFetch(std::vector<std::string> args);
int RunUpdate(std::vector<std::string> args);
int RunCheck(std::vector<std::string> args);
int RunBrowse(std::vector<std::string> args);
int RunRex(const std::vector<std::string>& args);
int RunMatch(std::vector<std::string> args);
int RunBlockPage(const std::vector<std::string>& args);
int RunComponents(const std::vector<std::string>& args);
int RunMenu(std::vector<std::string> args);
int RunOpen(std::vector<std::string> args);

}  // namespace tarnwick::cli

#include <windows.h>
// After windows.h, which it needs.
#include <shellapi.h>

#include "support/Shell.h"

namespace tarnwick {
namespace {

// One argument as the C runtime splits a command line: quoted when it holds a
// blank or a quote, with the backslashes before a quote doubled.
std::string Quoted(const std::string& argument) {
  if (!argument.empty() && argument.find_first_of(" \t\"") == std::string::npos) return argument;
  std::string quoted = "\"";
  std::size_t backslashes = 0;
  for (const char c : argument) {
    if (c == '\\') {
      ++backslashes;
      continue;
    }
    quoted.append(c == '"' ? 2 * backslashes + 1 : backslashes, '\\');
    backslashes = 0;
    quoted += c;
  }
  quoted.append(2 * backslashes, '\\');
  return quoted + "\"";
}

class WindowsShell final : public Shell {
 public:
  using Shell::StartProgram;
  bool StartProgram(const std::filesystem::path& program, const std::vector<std::string>& arguments) override {
    std::string parameters;
    for (const auto& argument : arguments) parameters += (parameters.empty() ? "" : " ") + Quoted(argument);
    const auto result = reinterpret_cast<INT_PTR>(ShellExecuteA(nullptr, "open", program.string().c_str(),
                                                                parameters.empty() ? nullptr : parameters.c_str(),
                                                                nullptr, SW_SHOWMINIMIZED));
    return result > 32;
  }
};

}  // namespace

std::unique_ptr<Shell> MakePlatformShell() { return std::make_unique<WindowsShell>(); }

}  // namespace tarnwick

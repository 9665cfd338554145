#include <windows.h>
// After windows.h, which it needs.
#include <shellapi.h>

#include "support/Shell.h"

namespace tarnwick {
namespace {

class WindowsShell final : public Shell {
 public:
  bool StartProgram(const std::filesystem::path& program, WindowState state) override {
    const auto result =
        reinterpret_cast<INT_PTR>(ShellExecuteA(nullptr, "open", program.string().c_str(), nullptr, nullptr,
                                                state == WindowState::Normal ? SW_SHOWNORMAL : SW_SHOWMINIMIZED));
    return result > 32;
  }
};

}  // namespace

std::unique_ptr<Shell> MakePlatformShell() { return std::make_unique<WindowsShell>(); }

}  // namespace tarnwick

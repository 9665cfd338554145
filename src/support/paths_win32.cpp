#include <windows.h>
// After windows.h, which it needs.
#include <shlobj.h>

#include <cstdlib>

#include "support/Paths.h"

namespace tarnwick {
namespace {

class WindowsPaths final : public Paths {
 public:
  std::filesystem::path ProgramFolder() override {
    const char* overridden = std::getenv("TARNWICK_PROGRAM_DIR");
    if (overridden != nullptr && *overridden != '\0') return overridden;
    return RunningModuleFolder();
  }

  std::filesystem::path LocalAppDataFolder() override {
    char folder[MAX_PATH] = {};
    if (FAILED(SHGetFolderPathA(nullptr, CSIDL_LOCAL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, folder))) return {};
    return folder;
  }
};

}  // namespace

std::unique_ptr<Paths> MakePlatformPaths() { return std::make_unique<WindowsPaths>(); }

// The module this code is linked into: the band DLL in a browser, the
// executable in a test, the command line or updater.exe.
std::filesystem::path RunningModuleFolder() {
  HMODULE module = nullptr;
  GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     reinterpret_cast<LPCSTR>(&RunningModuleFolder), &module);
  char name[MAX_PATH] = {};
  const DWORD length = GetModuleFileNameA(module, name, MAX_PATH);
  return std::filesystem::path(std::string(name, length)).parent_path();
}

}  // namespace tarnwick

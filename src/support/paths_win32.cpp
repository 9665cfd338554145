#include <windows.h>
// After windows.h, which it needs.
#include <shlobj.h>

#include <cstdlib>

#include "support/Paths.h"

namespace tarnwick {
namespace {

// The module this code is linked into: the band DLL in a browser, the
// executable in a test or command-line program.
std::filesystem::path ThisModuleFolder() {
  HMODULE module = nullptr;
  GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     reinterpret_cast<LPCSTR>(&ThisModuleFolder), &module);
  char name[MAX_PATH] = {};
  const DWORD length = GetModuleFileNameA(module, name, MAX_PATH);
  return std::filesystem::path(std::string(name, length)).parent_path();
}

class WindowsPaths final : public Paths {
 public:
  std::filesystem::path ProgramFolder() override {
    const char* overridden = std::getenv("TARNWICK_PROGRAM_DIR");
    if (overridden != nullptr && *overridden != '\0') return overridden;
    return ThisModuleFolder();
  }

  std::filesystem::path LocalAppDataFolder() override {
    char folder[MAX_PATH] = {};
    if (FAILED(SHGetFolderPathA(nullptr, CSIDL_LOCAL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, folder))) return {};
    return folder;
  }
};

}  // namespace

std::unique_ptr<Paths> MakePlatformPaths() { return std::make_unique<WindowsPaths>(); }

}  // namespace tarnwick

#include <windows.h>

#include "support/DynamicLibrary.h"
#include "support/com_win32.h"

namespace tarnwick {
namespace {

class Win32Library final : public DynamicLibrary {
 public:
  explicit Win32Library(HMODULE module) : module_(module) {}
  ~Win32Library() override { FreeLibrary(module_); }
  Win32Library(const Win32Library&) = delete;
  Win32Library& operator=(const Win32Library&) = delete;

 protected:
  Address Symbol(std::string_view name) override {
    return reinterpret_cast<Address>(reinterpret_cast<void*>(GetProcAddress(module_, std::string(name).c_str())));
  }

 private:
  HMODULE module_;
};

}  // namespace

std::unique_ptr<DynamicLibrary> LoadDynamicLibrary(const std::filesystem::path& file, std::string& error) {
  HMODULE module = LoadLibraryW(file.c_str());
  if (module == nullptr) {
    error = SystemMessage(HRESULT_FROM_WIN32(GetLastError()));
    return nullptr;
  }
  return std::make_unique<Win32Library>(module);
}

}  // namespace tarnwick

#include <dlfcn.h>

#include "support/DynamicLibrary.h"

namespace tarnwick {
namespace {

class PosixLibrary final : public DynamicLibrary {
 public:
  explicit PosixLibrary(void* handle) : handle_(handle) {}
  ~PosixLibrary() override { ::dlclose(handle_); }
  PosixLibrary(const PosixLibrary&) = delete;
  PosixLibrary& operator=(const PosixLibrary&) = delete;

 protected:
  Address Symbol(std::string_view name) override {
    return reinterpret_cast<Address>(::dlsym(handle_, std::string(name).c_str()));
  }

 private:
  void* handle_;
};

}  // namespace

std::unique_ptr<DynamicLibrary> LoadDynamicLibrary(const std::filesystem::path& file, std::string& error) {
  // RTLD_LOCAL: two components may link the same static code without their
  // symbols meeting.
  void* handle = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) {
    const char* reason = ::dlerror();
    error = reason != nullptr ? reason : "cannot load " + file.string();
    return nullptr;
  }
  return std::make_unique<PosixLibrary>(handle);
}

}  // namespace tarnwick

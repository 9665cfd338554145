// Dynamic-library port: loading a library file and finding a function in it.
// The library stays loaded while the object lives.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace tarnwick {

class DynamicLibrary {
 public:
  virtual ~DynamicLibrary() = default;

  // The exported function `name` as a `Function` pointer, or nullptr.
  template <typename Function>
  Function Find(std::string_view name) {
    return reinterpret_cast<Function>(Symbol(name));
  }

 protected:
  using Address = void (*)();
  virtual Address Symbol(std::string_view name) = 0;
};

// The loaded library, or nullptr with the system's reason in `error`.
std::unique_ptr<DynamicLibrary> LoadDynamicLibrary(const std::filesystem::path& file, std::string& error);

}  // namespace tarnwick

#include <windows.h>
// After windows.h, which it needs.
#include <shlwapi.h>

#include <vector>

#include "check/Canonicalizer.h"
#include "check/UrlCanonicalizer.h"

namespace tarnwick {
namespace {

class ShellCanonicalizer final : public Canonicalizer {
 public:
  bool Canonicalize(std::string_view url, std::string& canonical, std::string& error) override {
    std::vector<char> buffer(kCanonicalBufferSize);
    DWORD length = static_cast<DWORD>(buffer.size());
    const HRESULT result = UrlCanonicalizeA(std::string(url).c_str(), buffer.data(), &length,
                                            URL_ESCAPE_UNSAFE | URL_UNESCAPE | URL_DONT_SIMPLIFY);
    if (FAILED(result)) {
      char* text = nullptr;
      FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                     nullptr, static_cast<DWORD>(result), 0, reinterpret_cast<char*>(&text), 0, nullptr);
      error = text != nullptr ? text : "Error " + std::to_string(static_cast<unsigned long>(result));
      LocalFree(text);
      return false;
    }
    canonical.assign(buffer.data(), length);
    return true;
  }
};

}  // namespace

std::unique_ptr<Canonicalizer> MakePlatformCanonicalizer() { return std::make_unique<ShellCanonicalizer>(); }

}  // namespace tarnwick

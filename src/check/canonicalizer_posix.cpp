#include "check/Canonicalizer.h"
#include "check/UrlCanonicalizer.h"

namespace tarnwick {
namespace {

class OwnCanonicalizer final : public Canonicalizer {
 public:
  bool Canonicalize(std::string_view url, std::string& canonical, std::string& error) override {
    auto result = CanonicalizeUrl(url);
    if (!result) {
      error = "The canonical URL is longer than " + std::to_string(kCanonicalBufferSize - 1) + " characters";
      return false;
    }
    canonical = std::move(*result);
    return true;
  }
};

}  // namespace

std::unique_ptr<Canonicalizer> MakePlatformCanonicalizer() { return std::make_unique<OwnCanonicalizer>(); }

}  // namespace tarnwick

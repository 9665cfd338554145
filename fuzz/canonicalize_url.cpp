// The canonical form of the URL of every navigation the toolbar checks.
#include "FuzzSupport.h"
#include "check/UrlCanonicalizer.h"

namespace {

// Characters the canonical scheme, host and path never hold as they are:
// they are escaped there (a decoded backslash is the one that stays).
bool NeverBare(unsigned char c) {
  return c < 0x20 || c >= 0x7F || std::string_view(" \"<>[]^`{|}").find(static_cast<char>(c)) != std::string_view::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarnwick;
  const auto canonical = CanonicalizeUrl(fuzz::AsText(data, size));
  if (!canonical) return 0;
  if (canonical->size() >= kCanonicalBufferSize) fuzz::Broken("the canonical URL fits the buffer");
  if (canonical->find('\0') != std::string::npos) fuzz::Broken("a NUL ends the URL", *canonical);
  // Up to the first "?" or "#" the URL is its scheme, host and path (or
  // an opaque part, where both are escaped).
  const std::string_view hierarchical = std::string_view(*canonical).substr(0, canonical->find_first_of("?#"));
  for (const char c : hierarchical) {
    if (NeverBare(static_cast<unsigned char>(c))) fuzz::Broken("unsafe characters are escaped", *canonical);
  }
  return 0;
}

// Canonicaliser port: the platform's URL canonicaliser with escaping of
// unsafe characters, unescaping, and no simplification of dot segments.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace tarnwick {

class Canonicalizer {
 public:
  virtual ~Canonicalizer() = default;
  // False with `error` describing why when the URL cannot be canonicalised;
  // `canonical` is then left as it was.
  virtual bool Canonicalize(std::string_view url, std::string& canonical, std::string& error) = 0;
};

std::unique_ptr<Canonicalizer> MakePlatformCanonicalizer();

}  // namespace tarnwick

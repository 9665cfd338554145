// The toolbar's side of the pattern header, for checking what the server
// sends: Base64 decoding, TAB splitting and a case-sensitive PCRE2 test.
#pragma once

#include <string>
#include <vector>

namespace tarnwick::server::testing {

std::vector<std::string> DecodePatternHeader(const std::string& header);
// True when `pattern` compiles and matches somewhere in `subject`.
bool Matches(const std::string& pattern, const std::string& subject);
bool AnyMatches(const std::vector<std::string>& patterns, const std::string& subject);

}  // namespace tarnwick::server::testing

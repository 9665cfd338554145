#define PCRE2_CODE_UNIT_WIDTH 8
#include "PatternTesting.h"

#include <gtest/gtest.h>
#include <pcre2.h>

#include <algorithm>

#include "support/Base64.h"

namespace tarnwick::server::testing {

std::vector<std::string> DecodePatternHeader(const std::string& header) {
  const std::string bytes = DecodeB64(header);
  EXPECT_EQ(EncodeBase64(bytes), header) << "not Base64 as the server writes it";
  std::vector<std::string> patterns;
  std::size_t start = 0;
  for (std::size_t tab; (tab = bytes.find('\t', start)) != std::string::npos; start = tab + 1) {
    patterns.push_back(bytes.substr(start, tab - start));
  }
  patterns.push_back(bytes.substr(start));
  return patterns;
}

bool Matches(const std::string& pattern, const std::string& subject) {
  int error = 0;
  PCRE2_SIZE offset = 0;
  pcre2_code* code =
      pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern.c_str()), pattern.size(), 0, &error, &offset, nullptr);
  EXPECT_NE(code, nullptr) << "does not compile: " << pattern;
  if (code == nullptr) return false;
  pcre2_match_data* match = pcre2_match_data_create_from_pattern(code, nullptr);
  const int result =
      pcre2_match(code, reinterpret_cast<PCRE2_SPTR>(subject.c_str()), subject.size(), 0, 0, match, nullptr);
  pcre2_match_data_free(match);
  pcre2_code_free(code);
  return result >= 0;
}

bool AnyMatches(const std::vector<std::string>& patterns, const std::string& subject) {
  return std::any_of(patterns.begin(), patterns.end(),
                     [&](const std::string& pattern) { return Matches(pattern, subject); });
}

}  // namespace tarnwick::server::testing

// Our canonicaliser against the system's UrlCanonicalizeA over a few hundred
// URLs. Every difference is printed; a difference the team has not looked at
// and documented fails the test.
#include <gtest/gtest.h>
#include <windows.h>
// After windows.h, which it needs.
#include <shlwapi.h>

#include <set>
#include <vector>

#include "check/UrlCanonicalizer.h"

namespace tarnwick {
namespace {

std::string System(const std::string& url) {
  char buffer[kCanonicalBufferSize];
  DWORD length = sizeof buffer;
  if (FAILED(UrlCanonicalizeA(url.c_str(), buffer, &length, URL_ESCAPE_UNSAFE | URL_UNESCAPE | URL_DONT_SIMPLIFY))) {
    return "<failed>";
  }
  return std::string(buffer, length);
}

std::vector<std::string> Corpus() {
  const std::vector<std::string> prefixes = {
      "http://host.com", "https://Host.Example:8443", "ftp://u@host.com", "http://user:pw@h.com", "HTTP://H.COM",
      "unknown://h.com", "http://203.0.113.7",        "file:///C:",       "http:host.com",        "mailto:someone",
      "host.com"};
  const std::vector<std::string> paths = {
      "",        "/",          "/a b",      "/a%20b",    "/%41%42",
      "/%2f%3F", "/%23%25%5C", "/<x>\"y\"", "/{}|^[]`",  "/a/./b/../c",
      "\\a\\b",  "/%zz%4",     "/a%2520",   "/\x01\x7f", "/a'b!c$d(e)f*g,h;i=j:k@l~",
      "/%e9%C3", "//double//", "/a+b",      "/%3c%3E",   "/%00cut"};
  const std::vector<std::string> tails = {"", "?q=a b", "?q=%41&r=<x>", "#frag ment", "?x#%20y", "#%3C"};
  std::vector<std::string> corpus;
  for (const auto& prefix : prefixes) {
    for (const auto& path : paths) {
      for (const auto& tail : tails) {
        if (tail.empty() || path.size() < 4) corpus.push_back(prefix + path + tail);
      }
    }
  }
  return corpus;
}

// Differences between Wine's UrlCanonicalizeA and ours that were looked at and
// kept on purpose (ours follows the documented behaviour):
//   - Wine escapes a literal "&" in the path as %26; ours leaves it.
//   - Wine passes the byte 0x80 through unescaped; ours escapes it like any
//     other byte above 0x7E.
//   - Wine turns "/" into %2F after "scheme:" without "//"; ours leaves it.
//   - Wine decodes "%%41" to "%A" (the second "%" starts the escape); ours
//     keeps the lone "%" and decodes "%41".
//   - file: URLs: Wine treats "#" and "?" as part of the path there and
//     escapes them; ours reads them as query and fragment. File URLs are never
//     sent to the server.
bool Documented(const std::string& url) {
  return url.find('&') != std::string::npos || url.find('\x80') != std::string::npos ||
         url.starts_with("http:host.com") || url.find("%%") != std::string::npos || url.starts_with("file:");
}

TEST(UrlCanonicalizerAgainstSystem, AgreesOutsideTheDocumentedDifferences) {
  int compared = 0;
  int differences = 0;
  for (const auto& url : Corpus()) {
    ++compared;
    const std::string ours = CanonicalizeUrl(url).value_or("<failed>");
    const std::string system = System(url);
    if (ours == system) continue;
    ++differences;
    std::printf("difference: %s\n  system: %s\n  ours:   %s\n", url.c_str(), system.c_str(), ours.c_str());
    EXPECT_TRUE(Documented(url)) << url;
  }
  std::printf("%d URLs compared, %d differences\n", compared, differences);
  EXPECT_GT(compared, 200);
}

}  // namespace
}  // namespace tarnwick

// The X-Phishing-Patterns rule. For a host whose feeds list phishing pages
// below its root, the toolbar gets one regular expression per page, tested
// case-sensitively against the whole URL. Each pattern:
//   - is anchored at the start and accepts http or https: ^https?://
//   - then holds the listed URL (without scheme and fragment) as literal text:
//     regex metacharacters escaped, control and non-ASCII bytes as \xHH;
//   - lets a percent escape also match the character it stands for (either
//     hex case), and a "+" also match a space, because the toolbar decodes
//     the URL that way before testing it when cross-site scripting blocking
//     is on;
//   - ends the match where the listed URL ends: at the end of the URL or at a
//     fragment, and, when the listed URL has no query, also at a query.
// So the listed pages are blocked and their neighbours (other pages, longer
// names, the site's root) are not.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace tarnwick::server {

// At most this many patterns, newest first, and this much pattern text go
// into one answer, which keeps the header within what HTTP clients accept.
inline constexpr std::size_t kMaxPatternsPerAnswer = 100;
inline constexpr std::size_t kMaxPatternTextBytes = 49152;  // 48 KiB, 64 KiB as Base64

// The pattern for one listed page, given as a SiteUrl's siteUrl text.
std::string PatternForPage(std::string_view siteUrl);

// The header value for the pages of one host, oldest first as stored:
// Base64 of the newest pages' patterns joined by TAB.
std::string PatternHeader(std::span<const std::string> siteUrls);

}  // namespace tarnwick::server

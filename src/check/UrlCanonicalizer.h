// Our own URL canonicaliser, behaving as the Windows shell's UrlCanonicalize
// does with URL_ESCAPE_UNSAFE | URL_UNESCAPE | URL_DONT_SIMPLIFY:
//
//   - %XX escapes (two hex digits, either case) are decoded everywhere; a
//     decoded NUL ends the URL; broken escapes ("%zz", "%4") stay as written;
//   - in the scheme-and-host part and the path, unsafe characters are then
//     escaped as %XX with upper-case digits: controls, DEL, bytes above 0x7E,
//     space and " < > [ ] \ ^ ` { | }. Characters that came out of an escape
//     as "#", "%" or "\" stay as they are;
//   - the query (from "?") and the fragment (from "#") are decoded but never
//     escaped again;
//   - backslashes in the path of an http, https or file URL become slashes
//     (elsewhere they are escaped); tabs and line breaks are dropped;
//   - "." and ".." segments stay (no simplification), letter case stays, and a
//     "scheme://host" with nothing after it gets a "/" (not when the host
//     part holds a user name: "ftp://user@host" stays as it is).
//
// A "scheme:rest" URL without "//" is one opaque part: "/", "?" and "#" are
// escaped there as well ("mailto:a/b?c" -> "mailto:a%2Fb%3Fc").
//
// Known differences from the system's canonicaliser (measured under Wine):
// file: URLs (the system treats "#" and "?" there as part of the path), a
// literal "&" in a path (escaped by the system), the byte 0x80 (passed
// through by the system), "http:host?query" without "//" (the system keeps
// the query and fragment there) and "%%41" (decoded to "%A" by the system).
//
//   http://Example.COM/a b/c            -> http://Example.COM/a%20b/c
//   http://host.com/%41%2F%3F?q=%26x    -> http://host.com/A/??q=&x
//   http://example.com\a\..\b           -> http://example.com/a/../b
//   http://host.com/<script>            -> http://host.com/%3Cscript%3E
//   http://host.com/x?y=<z>#a b         -> http://host.com/x?y=<z>#a b
//   mailto:a b@c                        -> mailto:a%20b@c
//   http://host.com                     -> http://host.com/
//
// The result is limited to 8,191 characters, as the caller's buffer is.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarnwick {

inline constexpr std::size_t kCanonicalBufferSize = 8192;

// nullopt when the result does not fit the buffer.
std::optional<std::string> CanonicalizeUrl(std::string_view url);

}  // namespace tarnwick

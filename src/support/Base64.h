// Base64 with the standard alphabet and "=" padding: the server encodes the
// X-Phishing-Patterns header with it, and the toolbar decodes it.
#pragma once

#include <string>
#include <string_view>

namespace tarnwick {

std::string EncodeBase64(std::string_view bytes);

// Decodes leniently, as the toolbar always has: characters outside the
// alphabet are skipped, the first "=" ends the text, and a final partial
// group gives the whole bytes it holds. Text with nothing to decode ("",
// "!!!", "====") gives "". Never fails.
std::string DecodeB64(std::string_view text);

}  // namespace tarnwick

// Percent escapes, and the query strings and form bodies of requests to the
// server built on them.
#include "FuzzSupport.h"
#include "server/QueryString.h"
#include "support/Hex.h"

namespace {

// Every byte as %XX: what any client may send for any text.
std::string EscapeAll(std::string_view text) {
  std::string out;
  for (const char c : text) {
    out += '%';
    tarnwick::AppendHexByte(out, static_cast<unsigned char>(c), tarnwick::HexLetters::Upper);
  }
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarnwick;
  using namespace tarnwick::server;
  const std::string_view text = fuzz::AsText(data, size);
  for (const bool plusIsSpace : {false, true}) {
    const std::string decoded = PercentDecode(text, plusIsSpace);
    if (decoded.size() > text.size()) fuzz::Broken("decoding never lengthens the text", text);
    if (PercentDecode(EscapeAll(text), plusIsSpace) != text) fuzz::Broken("escaped bytes decode to themselves", text);
  }
  for (const Params& params : {ParseQuery(text), ParseForm(text)}) {
    std::string escaped;
    for (const auto& [name, value] : params) {
      escaped += (escaped.empty() ? "" : "&") + EscapeAll(name) + "=" + EscapeAll(value);
      if (Param(params, name) == std::nullopt) fuzz::Broken("each name is found", name);
    }
    if (ParseQuery(escaped) != params || ParseForm(escaped) != params) {
      fuzz::Broken("escaped pairs read back", text);
    }
  }
  return 0;
}

#include "support/TerminalText.h"

#include "support/Text.h"

namespace tarnwick {
namespace {

bool IsControl(unsigned char byte) {
  return byte < 0x20 || byte == 0x7F || byte == 0x81 || byte == 0x8D || byte == 0x8F || byte == 0x90 || byte == 0x9D;
}

}  // namespace

std::string TerminalText(std::string_view ansi) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string printable;
  std::size_t plainFrom = 0;
  const auto flush = [&](std::size_t upTo) { printable += AnsiToUtf8(ansi.substr(plainFrom, upTo - plainFrom)); };
  for (std::size_t i = 0; i < ansi.size(); ++i) {
    const auto byte = static_cast<unsigned char>(ansi[i]);
    if (!IsControl(byte)) continue;
    flush(i);
    plainFrom = i + 1;
    switch (byte) {
      case '\r': printable += "\\r"; break;
      case '\n': printable += "\\n"; break;
      case '\t': printable += "\\t"; break;
      default: printable += {'\\', 'x', kHex[byte >> 4], kHex[byte & 0xF]};
    }
  }
  flush(ansi.size());
  return printable;
}

}  // namespace tarnwick

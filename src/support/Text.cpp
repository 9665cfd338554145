#include "support/Text.h"
#include <algorithm>

#include <array>
#include <cstdint>

namespace tarnwick {
namespace {

// Windows-1252 0x80-0x9F; undefined positions keep their own value.
constexpr std::array<char16_t, 32> kHighControls = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  //
                                                    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,  //
                                                    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  //
                                                    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

void AppendUtf8(std::string& out, char32_t cp) {
  if (cp < 0x80) {
    out += static_cast<char>(cp);
  } else if (cp < 0x800) {
    out += static_cast<char>(0xC0 | (cp >> 6));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else {
    out += static_cast<char>(0xE0 | (cp >> 12));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  }
}

char AnsiOfCodePoint(char32_t cp) {
  if (cp < 0x80 || (cp >= 0xA0 && cp <= 0xFF)) return static_cast<char>(cp);
  for (std::size_t i = 0; i < kHighControls.size(); ++i) {
    if (kHighControls[i] == cp) return static_cast<char>(0x80 + i);
  }
  return '?';
}

}  // namespace

char16_t Cp1252ToUtf16(unsigned char byte) {
  if (byte >= 0x80 && byte <= 0x9F) return kHighControls[byte - 0x80];
  return byte;
}

unsigned char HashByteOfAnsi(unsigned char byte) { return static_cast<unsigned char>(Cp1252ToUtf16(byte) & 0xFF); }

std::string AnsiToUtf8(std::string_view ansi) {
  std::string out;
  out.reserve(ansi.size());
  for (char c : ansi) AppendUtf8(out, Cp1252ToUtf16(static_cast<unsigned char>(c)));
  return out;
}

std::string Utf8ToAnsi(std::string_view utf8) {
  std::string out;
  out.reserve(utf8.size());
  std::size_t i = 0;
  while (i < utf8.size()) {
    const auto lead = static_cast<unsigned char>(utf8[i]);
    std::size_t length = lead < 0x80           ? 1
                         : (lead >> 5) == 0x6  ? 2
                         : (lead >> 4) == 0xE  ? 3
                         : (lead >> 3) == 0x1E ? 4
                                               : 0;
    if (length == 0 || i + length > utf8.size()) {
      out += '?';
      ++i;
      continue;
    }
    char32_t cp = length == 1 ? lead : lead & (0x7F >> length);
    bool valid = true;
    for (std::size_t k = 1; k < length; ++k) {
      const auto next = static_cast<unsigned char>(utf8[i + k]);
      if ((next & 0xC0) != 0x80) valid = false;
      cp = (cp << 6) | (next & 0x3F);
    }
    if (!valid) {
      out += '?';
      ++i;
      continue;
    }
    out += AnsiOfCodePoint(cp);
    i += length;
  }
  return out;
}

std::string LowerAscii(std::string_view text) {
  std::string out(text);
  for (char& c : out) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return out;
}

std::string UpperAscii(std::string_view text) {
  std::string out(text);
  for (char& c : out) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return out;
}

bool EqualsIgnoreCase(std::string_view a, std::string_view b) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [&](char x, char y) { return lower(x) == lower(y); });
}

std::vector<std::string> Split(std::string_view text, std::string_view separator) {
  std::vector<std::string> parts;
  std::size_t start = 0;
  for (;;) {
    const auto end = text.find(separator, start);
    if (end == std::string_view::npos) {
      parts.emplace_back(text.substr(start));
      return parts;
    }
    parts.emplace_back(text.substr(start, end - start));
    start = end + separator.size();
  }
}

}  // namespace tarnwick

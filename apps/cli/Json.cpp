#include "Json.h"

#include <cstdio>

#include "support/Text.h"

namespace tarnwick::cli {

std::string JsonString(std::string_view ansi) {
  std::string out = "\"";
  for (char c : AnsiToUtf8(ansi)) {
    switch (c) {
      case '"': out += "\\\""; break;
      case '\\': out += "\\\\"; break;
      case '\n': out += "\\n"; break;
      case '\r': out += "\\r"; break;
      case '\t': out += "\\t"; break;
      default:
        if (static_cast<unsigned char>(c) < 0x20) {
          char escaped[8];
          std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned char>(c));
          out += escaped;
        } else {
          out += c;
        }
    }
  }
  return out + "\"";
}

}  // namespace tarnwick::cli

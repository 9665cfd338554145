// Reading what the retrieval component hands back after a transfer: the
// response header block and the error answer "NNN text". Plain functions of
// text, so they are tested and fuzzed without a transfer.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tarnwick {

// The value of the first header line "Name: value" whose beginning is `name`
// + ":" exactly (case-sensitive). Lines are separated by CR LF and the first
// one, the status line, is never searched. The value starts one character
// after the colon; nothing is trimmed. Empty when no line matches.
std::string HeaderValue(std::string_view headerBlock, std::string_view name);

struct ErrorAnswer {
  std::int16_t status = 0;
  std::string text;
};

// "404 Not Found" -> {404, "Not Found"}: the number before the first blank
// and everything after it. Throws RoutineError when there is no blank
// (invalid procedure call, 5) or the number is no 16-bit integer (overflow 6,
// type mismatch 13).
ErrorAnswer ReadErrorAnswer(std::string_view answer);

}  // namespace tarnwick

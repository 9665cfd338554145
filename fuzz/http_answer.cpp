// What the retrieval component hands the transfer form after a transfer:
// the response header block and the error answer "NNN text". Input: the
// header name on the first line, the header block or answer after it.
#include "FuzzSupport.h"
#include "net/HttpAnswer.h"
#include "support/RoutineError.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarnwick;
  const std::string_view input = fuzz::AsText(data, size);
  const std::size_t newline = input.find('\n');
  const std::string_view name = input.substr(0, newline);
  const std::string_view block = newline == std::string_view::npos ? std::string_view() : input.substr(newline + 1);

  const std::string value = HeaderValue(block, name);
  if (value.find("\r\n") != std::string::npos || block.find(value) == std::string_view::npos) {
    fuzz::Broken("a header's value is part of one line", value);
  }
  try {
    const ErrorAnswer answer = ReadErrorAnswer(block);
    if (block.substr(block.find(' ') + 1) != answer.text) fuzz::Broken("the text follows the first blank", block);
  } catch (const RoutineError&) {
    // No number, or not a 16-bit one: the form's error trap takes it.
  }
  return 0;
}

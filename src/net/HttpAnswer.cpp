#include "net/HttpAnswer.h"

#include <algorithm>

#include "settings/SettingValue.h"
#include "support/RoutineError.h"

namespace tarnwick {

std::string HeaderValue(std::string_view headerBlock, std::string_view name) {
  const std::string key = std::string(name) + ":";
  std::size_t start = headerBlock.find("\r\n");
  while (start != std::string_view::npos) {
    start += 2;
    const std::size_t end = headerBlock.find("\r\n", start);
    const std::string_view line = headerBlock.substr(start, end - start);
    if (!line.empty() && line.starts_with(key)) return std::string(line.substr(std::min(key.size() + 1, line.size())));
    start = end;
  }
  return {};
}

ErrorAnswer ReadErrorAnswer(std::string_view answer) {
  const auto space = answer.find(' ');
  if (space == std::string_view::npos) {
    throw RoutineError(kErrInvalidProcedureCall, "Invalid procedure call or argument");
  }
  try {
    return {ToInteger(std::string(answer.substr(0, space))), std::string(answer.substr(space + 1))};
  } catch (const ConversionError& error) {
    throw RoutineError(error.number(), error.what());
  }
}

}  // namespace tarnwick

// The replacement-expression language of the "e" flag: read, then evaluated
// over groups. Input: the expression on the first line, then one group a
// line; a line holding only "\x01" is a group that took no part.
#include <optional>

#include "Expression.h"
#include "FuzzSupport.h"
#include "support/Text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarnwick;
  const std::vector<std::string> lines = Split(fuzz::AsText(data, size), "\n");
  std::vector<std::optional<std::string_view>> groups;
  for (std::size_t i = 1; i < lines.size(); ++i) {
    groups.push_back(lines[i] == "\x01" ? std::nullopt : std::optional<std::string_view>(lines[i]));
  }
  bool tokenized = false;
  try {
    tokenized = !rex::Tokenize(lines[0]).empty();
  } catch (const rex::ExpressionError&) {
  }
  try {
    const rex::Expression expression = rex::Expression::Parse(lines[0]);
    if (!tokenized) fuzz::Broken("what parses has tokens", lines[0]);
    expression.Evaluate(groups);
  } catch (const rex::ExpressionError&) {
  }
  return 0;
}

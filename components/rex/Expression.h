// A replacement expression ("e" flag): a small Perl-like language, read once
// and evaluated for each match. It has string literals, numbers, the groups
// $1..$9, concatenation with ".", the conditional "?:" with Perl's truth,
// parentheses and calls of the functions in Builtins.h, such as
//   chr($1 ? hex($1) : $2)        '%'.sprintf('%02x', ord($1))
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "ExpressionLexer.h"

namespace tarnwick::rex {

class Expression {
 public:
  // Throws ExpressionError for anything it cannot read.
  static Expression Parse(std::string_view text);

  Expression(Expression&&) noexcept;
  Expression& operator=(Expression&&) noexcept;
  ~Expression();

  // The value as text; groups[0] is $1. A group past the end, or one that
  // took no part in the match, is undefined.
  std::string Evaluate(std::span<const std::optional<std::string_view>> groups) const;

  struct Node;

 private:
  explicit Expression(std::unique_ptr<Node> root);
  std::unique_ptr<Node> root_;
};

}  // namespace tarnwick::rex

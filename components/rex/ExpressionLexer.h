// The tokens of a replacement expression: string literals in single quotes
// (only \\ and \' are escapes) and double quotes (escapes, and $1..$9 put
// into the text), numbers, the groups $1..$9, names, and . ? : , ( ).
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::rex {

// Raised for an expression that cannot be read; says what and where.
class ExpressionError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

enum class TokenKind { String, Number, Group, Name, Dot, Question, Colon, Comma, Open, Close, End };

// A piece of a double-quoted string: text, or a group put into it.
struct StringPart {
  std::string text;
  int group = 0;  // 1..9, or 0 for text
};

struct Token {
  TokenKind kind;
  std::size_t position;           // of its first character in the expression
  std::string text;               // a Name's name; a Number's digits
  std::vector<StringPart> parts;  // a String's pieces
  int group = 0;                  // a Group's number
};

std::vector<Token> Tokenize(std::string_view expression);

}  // namespace tarnwick::rex

#include "ExpressionLexer.h"

#include <cctype>

#include "support/Hex.h"

namespace tarnwick::rex {
namespace {

bool IsDigit(char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; }
bool IsHexDigit(char c) { return HexDigitValue(c) >= 0; }
bool IsNameStart(char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0 || c == '_'; }
bool IsNameChar(char c) { return IsNameStart(c) || IsDigit(c); }

class Lexer {
 public:
  explicit Lexer(std::string_view text) : text_(text) {}

  std::vector<Token> Run() {
    std::vector<Token> tokens;
    while (true) {
      while (at_ < text_.size() && std::isspace(static_cast<unsigned char>(text_[at_]))) ++at_;
      if (at_ >= text_.size()) break;
      tokens.push_back(Next());
    }
    tokens.push_back({TokenKind::End, at_, {}, {}, 0});
    return tokens;
  }

 private:
  [[noreturn]] void Fail(const std::string& what, std::size_t where) const {
    throw ExpressionError(what + " at position " + std::to_string(where + 1));
  }

  Token Next() {
    const std::size_t start = at_;
    const char c = text_[at_];
    const auto single = [&](TokenKind kind) {
      ++at_;
      return Token{kind, start, {}, {}, 0};
    };
    switch (c) {
      case '.':
        if (at_ + 1 < text_.size() && IsDigit(text_[at_ + 1])) return Number();
        return single(TokenKind::Dot);
      case '?': return single(TokenKind::Question);
      case ':': return single(TokenKind::Colon);
      case ',': return single(TokenKind::Comma);
      case '(': return single(TokenKind::Open);
      case ')': return single(TokenKind::Close);
      case '\'': return SingleQuoted();
      case '"': return DoubleQuoted();
      case '$': {
        const int group = GroupNumber();
        return Token{TokenKind::Group, start, {}, {}, group};
      }
      default: break;
    }
    if (IsDigit(c)) return Number();
    if (IsNameStart(c)) {
      while (at_ < text_.size() && IsNameChar(text_[at_])) ++at_;
      return Token{TokenKind::Name, start, std::string(text_.substr(start, at_ - start)), {}, 0};
    }
    Fail(std::string("unexpected '") + c + "'", start);
  }

  // "$1".."$9", with `at_` on the "$".
  int GroupNumber() {
    const std::size_t start = at_++;
    if (at_ >= text_.size() || !IsDigit(text_[at_]) || text_[at_] == '0') Fail("only $1 to $9 may be used", start);
    const int group = text_[at_++] - '0';
    if (at_ < text_.size() && IsDigit(text_[at_])) Fail("only $1 to $9 may be used", start);
    return group;
  }

  Token Number() {
    const std::size_t start = at_;
    if (text_.substr(at_, 2) == "0x" || text_.substr(at_, 2) == "0X") {
      at_ += 2;
      while (at_ < text_.size() && IsHexDigit(text_[at_])) ++at_;
      if (at_ == start + 2) Fail("hexadecimal number without digits", start);
    } else {
      while (at_ < text_.size() && IsDigit(text_[at_])) ++at_;
      if (at_ + 1 < text_.size() && text_[at_] == '.' && IsDigit(text_[at_ + 1])) {
        ++at_;
        while (at_ < text_.size() && IsDigit(text_[at_])) ++at_;
      }
    }
    return Token{TokenKind::Number, start, std::string(text_.substr(start, at_ - start)), {}, 0};
  }

  Token SingleQuoted() {
    const std::size_t start = at_++;
    std::string text;
    while (at_ < text_.size() && text_[at_] != '\'') {
      if (text_[at_] == '\\' && at_ + 1 < text_.size() && (text_[at_ + 1] == '\\' || text_[at_ + 1] == '\'')) ++at_;
      text += text_[at_++];
    }
    if (at_ >= text_.size()) Fail("string without its closing quote", start);
    ++at_;
    return Token{TokenKind::String, start, {}, {{text, 0}}, 0};
  }

  Token DoubleQuoted() {
    const std::size_t start = at_++;
    std::vector<StringPart> parts{{}};
    while (at_ < text_.size() && text_[at_] != '"') {
      if (text_[at_] == '$') {
        parts.push_back({{}, GroupNumber()});
        parts.push_back({});
      } else if (text_[at_] == '\\') {
        parts.back().text += Escape();
      } else {
        parts.back().text += text_[at_++];
      }
    }
    if (at_ >= text_.size()) Fail("string without its closing quote", start);
    ++at_;
    return Token{TokenKind::String, start, {}, std::move(parts), 0};
  }

  // An escape inside double quotes, with `at_` on the backslash.
  std::string Escape() {
    const std::size_t start = at_++;
    if (at_ >= text_.size()) Fail("string without its closing quote", start);
    const char c = text_[at_++];
    switch (c) {
      case 'n': return "\n";
      case 't': return "\t";
      case 'r': return "\r";
      case 'f': return "\f";
      case 'a': return "\a";
      case 'e': return "\x1b";
      case '0': return std::string(1, '\0');
      case 'x': {
        const bool braced = at_ < text_.size() && text_[at_] == '{';
        if (braced) ++at_;
        const std::size_t first = at_;
        while (at_ < text_.size() && IsHexDigit(text_[at_]) && (braced || at_ - first < 2)) ++at_;
        const std::string digits(text_.substr(first, at_ - first));
        if (braced && (at_ >= text_.size() || text_[at_++] != '}')) Fail("\\x{ without its closing brace", start);
        const unsigned long code = digits.empty() ? 0 : std::stoul(digits.substr(0, 8), nullptr, 16);
        return std::string(1, static_cast<char>(code <= 255 ? code : '?'));
      }
      default: return std::string(1, c);  // \\ \" \$ and any other character stand for themselves
    }
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

}  // namespace

std::vector<Token> Tokenize(std::string_view expression) { return Lexer(expression).Run(); }

}  // namespace tarnwick::rex

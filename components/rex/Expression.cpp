#include "Expression.h"

#include <vector>

#include "Builtins.h"
#include "Scalar.h"

namespace tarnwick::rex {

struct Expression::Node {
  enum class Kind { Literal, Group, String, Call, Concatenation, Conditional };
  Kind kind;
  Scalar literal;                 // Literal
  int group = 0;                  // Group
  std::vector<StringPart> parts;  // String
  const Builtin* builtin = nullptr;
  std::vector<std::unique_ptr<Node>> operands;  // Call's arguments; the others' operands in order
};

namespace {

using Node = Expression::Node;
using Groups = std::span<const std::optional<std::string_view>>;

std::unique_ptr<Node> MakeNode(Node::Kind kind) {
  auto node = std::make_unique<Node>();
  node->kind = kind;
  return node;
}

// Recursive descent, loosest binding first:
//   expression    := [ conditional ]
//   conditional   := concatenation [ "?" conditional ":" conditional ]
//   concatenation := primary { "." primary }
//   primary       := string | number | group | name "(" [ arguments ] ")" | "(" conditional ")"
class Parser {
 public:
  explicit Parser(std::string_view text) : tokens_(Tokenize(text)) {}

  std::unique_ptr<Node> Run() {
    if (Peek().kind == TokenKind::End) return MakeNode(Node::Kind::Literal);  // empty: replaces with nothing
    auto root = Conditional();
    if (Peek().kind != TokenKind::End) Fail("unexpected text");
    return root;
  }

 private:
  const Token& Peek() const { return tokens_[at_]; }
  const Token& Take() { return tokens_[at_++]; }
  [[noreturn]] void Fail(const std::string& what) const {
    throw ExpressionError(what + " at position " + std::to_string(Peek().position + 1));
  }
  void Expect(TokenKind kind, const char* what) {
    if (Peek().kind != kind) Fail(std::string("expected ") + what);
    ++at_;
  }

  std::unique_ptr<Node> Conditional() {
    // Nesting is what the parser and the evaluation recurse on.
    if (++depth_ > kMaxDepth) Fail("expression nested too deeply");
    auto condition = Concatenation();
    --depth_;
    if (Peek().kind != TokenKind::Question) return condition;
    ++at_;
    auto node = MakeNode(Node::Kind::Conditional);
    node->operands.push_back(std::move(condition));
    ++depth_;
    node->operands.push_back(Conditional());
    Expect(TokenKind::Colon, "':'");
    node->operands.push_back(Conditional());
    --depth_;
    return node;
  }

  std::unique_ptr<Node> Concatenation() {
    auto first = Primary();
    if (Peek().kind != TokenKind::Dot) return first;
    auto node = MakeNode(Node::Kind::Concatenation);
    node->operands.push_back(std::move(first));
    while (Peek().kind == TokenKind::Dot) {
      ++at_;
      node->operands.push_back(Primary());
    }
    return node;
  }

  std::unique_ptr<Node> Primary() {
    const Token& token = Peek();
    switch (token.kind) {
      case TokenKind::String: {
        auto node = MakeNode(Node::Kind::String);
        node->parts = Take().parts;
        return node;
      }
      case TokenKind::Number: {
        auto node = MakeNode(Node::Kind::Literal);
        const std::string& digits = Take().text;
        const bool hexadecimal = digits.size() > 1 && (digits[1] == 'x' || digits[1] == 'X');
        node->literal = Scalar::Number(hexadecimal ? HexValue(digits) : LeadingNumber(digits));
        return node;
      }
      case TokenKind::Group: {
        auto node = MakeNode(Node::Kind::Group);
        node->group = Take().group;
        return node;
      }
      case TokenKind::Name: return Call();
      case TokenKind::Open: {
        ++at_;
        auto inner = Conditional();
        Expect(TokenKind::Close, "')'");
        return inner;
      }
      default: Fail("expected a value");
    }
  }

  std::unique_ptr<Node> Call() {
    const Token& name = Peek();
    const Builtin* builtin = FindBuiltin(name.text);
    if (builtin == nullptr) Fail("unknown function '" + name.text + "'");
    ++at_;
    Expect(TokenKind::Open, "'(' after the function's name");
    auto node = MakeNode(Node::Kind::Call);
    node->builtin = builtin;
    if (Peek().kind != TokenKind::Close) {
      node->operands.push_back(Conditional());
      while (Peek().kind == TokenKind::Comma) {
        ++at_;
        node->operands.push_back(Conditional());
      }
    }
    Expect(TokenKind::Close, "')'");
    const std::size_t count = node->operands.size();
    if (count < builtin->minArguments || count > builtin->maxArguments) {
      throw ExpressionError(std::string(builtin->name) + " takes " + std::to_string(builtin->minArguments) +
                            (builtin->maxArguments > builtin->minArguments ? " or more" : "") + " argument(s), not " +
                            std::to_string(count));
    }
    return node;
  }

  static constexpr int kMaxDepth = 100;

  std::vector<Token> tokens_;
  std::size_t at_ = 0;
  int depth_ = 0;
};

Scalar GroupValue(Groups groups, int number) {
  const auto index = static_cast<std::size_t>(number - 1);
  if (index >= groups.size() || !groups[index]) return Scalar();
  return Scalar::Text(std::string(*groups[index]));
}

Scalar Evaluate(const Node& node, Groups groups) {
  switch (node.kind) {
    case Node::Kind::Literal: return node.literal;
    case Node::Kind::Group: return GroupValue(groups, node.group);
    case Node::Kind::String: {
      std::string text;
      for (const StringPart& part : node.parts)
        text += part.group == 0 ? part.text : GroupValue(groups, part.group).AsText();
      return Scalar::Text(std::move(text));
    }
    case Node::Kind::Call: {
      std::vector<Scalar> arguments;
      arguments.reserve(node.operands.size());
      for (const auto& operand : node.operands) arguments.push_back(Evaluate(*operand, groups));
      return node.builtin->call(arguments);
    }
    case Node::Kind::Concatenation: {
      std::string text;
      for (const auto& operand : node.operands) text += Evaluate(*operand, groups).AsText();
      return Scalar::Text(std::move(text));
    }
    case Node::Kind::Conditional:
      return Evaluate(*node.operands[Evaluate(*node.operands[0], groups).Truth() ? 1 : 2], groups);
  }
  return Scalar();
}

}  // namespace

Expression Expression::Parse(std::string_view text) { return Expression(Parser(text).Run()); }

Expression::Expression(std::unique_ptr<Node> root) : root_(std::move(root)) {}
Expression::Expression(Expression&&) noexcept = default;
Expression& Expression::operator=(Expression&&) noexcept = default;
Expression::~Expression() = default;

std::string Expression::Evaluate(Groups groups) const { return rex::Evaluate(*root_, groups).AsText(); }

}  // namespace tarnwick::rex

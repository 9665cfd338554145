// The replacement-expression evaluator on its own: the program's three
// expressions, the rest of the language, and what it refuses to read.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "Expression.h"

namespace tarnwick::rex {
namespace {

// Evaluates `text` with $1, $2, ... set to `groups` (nullopt: took no part).
std::string Evaluate(const std::string& text, const std::vector<std::optional<std::string_view>>& groups = {}) {
  return Expression::Parse(text).Evaluate(groups);
}

TEST(ExpressionTest, TheProgramsThreeExpressions) {
  EXPECT_EQ(Evaluate("chr(hex($1))", {"41"}), "A");
  EXPECT_EQ(Evaluate("chr(hex($1))", {"2f"}), "/");
  EXPECT_EQ(Evaluate("chr(hex($1))", {"e9"}), "\xE9");

  const std::string reference = "chr($1 ? hex($1) : $2)";
  EXPECT_EQ(Evaluate(reference, {"41", std::nullopt}), "A");
  EXPECT_EQ(Evaluate(reference, {std::nullopt, "65"}), "A");
  EXPECT_EQ(Evaluate(reference, {"", "106"}), "j");
  EXPECT_EQ(Evaluate(reference, {"0", "66"}), "B") << "\"0\" is false";
  EXPECT_EQ(Evaluate(reference, {"00", "66"}), std::string(1, '\0')) << "\"00\" is true";
  EXPECT_EQ(Evaluate(reference, {"", ""}), std::string(1, '\0')) << "an empty group counts as 0";
  EXPECT_EQ(Evaluate(reference, {std::nullopt, "8364"}), "\x80") << "the euro sign's Windows-1252 byte";
  EXPECT_EQ(Evaluate(reference, {std::nullopt, "12354"}), "?") << "no Windows-1252 byte";

  const std::string encode = "'%'.sprintf('%02x', ord($1))";
  EXPECT_EQ(Evaluate(encode, {" "}), "%20");
  EXPECT_EQ(Evaluate(encode, {"\n"}), "%0a");
  EXPECT_EQ(Evaluate(encode, {"\xFF"}), "%ff");
}

TEST(ExpressionTest, LiteralsGroupsAndOperators) {
  EXPECT_EQ(Evaluate(R"('it\'s \n \\')"), R"(it's \n \)");
  EXPECT_EQ(Evaluate(R"("tab\there\x41\x{42}\$1 \"q\"")"), "tab\thereAB$1 \"q\"");
  EXPECT_EQ(Evaluate(R"("[$1|$2|$3]")", {"a", std::nullopt}), "[a||]");
  EXPECT_EQ(Evaluate("$1 . '-' . $2 . 7 . 0x10 . 2.50", {"x", "y"}), "x-y7162.5");
  EXPECT_EQ(Evaluate("($1 ? 'one' : $2 ? 'two' : 'none')", {"", "z"}), "two");
  EXPECT_EQ(Evaluate("  uc( lc('MiXeD') ) . lc(\"ABC\")  "), "MIXEDabc");
  EXPECT_EQ(Evaluate("ord('') . ':' . hex('zz') . ':' . hex('0x1_F') . ':' . hex('ffffffff')"), "0:0:31:4294967295");
  EXPECT_EQ(Evaluate(""), "") << "an empty expression replaces with nothing, as in Perl";
}

TEST(ExpressionTest, SprintfFormats) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"sprintf('%02x|%02X|%x', 10, 255, 4096)", "0a|FF|1000"},
      {"sprintf('%5s|%-5s|%.2s', 'ab', 'cd', 'efgh')", "   ab|cd   |ef"},
      {"sprintf('%d %i %u', '12abc', '-7.9', 3)", "12 -7 3"},
      {"sprintf('%+05d|%o|%#x|%b|%08b', 42, 8, 255, 5, 5)", "+0042|10|0xff|101|00000101"},
      {"sprintf('%.2f|%e|%g', 3.14159, 1500, 0.0001)", "3.14|1.500000e+03|0.0001"},
      {"sprintf('%c%c', 72, 105)", "Hi"},
      {"sprintf('%*d|%-*d|', 4, 7, 3, 1)", "   7|1  |"},
      {"sprintf('100%% %z %d')", "100% %z 0"},
  };
  for (const auto& [expression, expected] : cases) EXPECT_EQ(Evaluate(expression), expected) << expression;
}

TEST(ExpressionTest, WhatCannotBeReadIsAnError) {
  const std::vector<std::string> unreadable = {
      "chr(",        "chr($1",
      "chr(hex($1)", "chr)",
      "foo($1)",     "system('ls')",
      "$0",          "$10",
      "$x",          "'open",
      "\"open",      "1 +",
      "$1 ?",        "$1 ? 'a'",
      "? :",         "chr()",
      "chr(1, 2)",   "sprintf()",
      "$1 $2",       "\"\\x{41\"",
      "chr hex $1",  std::string(200, '(') + "1" + std::string(200, ')'),
  };
  for (const auto& text : unreadable) EXPECT_THROW(Expression::Parse(text), ExpressionError) << text;
}

}  // namespace
}  // namespace tarnwick::rex

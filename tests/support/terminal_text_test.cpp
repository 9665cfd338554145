#include "support/TerminalText.h"

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

TEST(TerminalText, ControlCharactersAreEscapedAndTheRestIsUtf8) {
  EXPECT_EQ(TerminalText("plain text"), "plain text");
  EXPECT_EQ(TerminalText("caf\xE9 \x80"), "caf\xC3\xA9 \xE2\x82\xAC");
  EXPECT_EQ(TerminalText("a\r\nb\tc"), "a\\r\\nb\\tc");
  EXPECT_EQ(TerminalText("\x1B[2J\x1B]0;owned\x07"), "\\x1B[2J\\x1B]0;owned\\x07");
  EXPECT_EQ(TerminalText(std::string("nul\0del\x7F", 8)), "nul\\x00del\\x7F");
  // Undefined in Windows-1252, these would reach the terminal as C1 controls.
  EXPECT_EQ(TerminalText("\x9D\x90"), "\\x9D\\x90");
}

}  // namespace
}  // namespace tarnwick

#include <gtest/gtest.h>

#include <algorithm>

#include "support/DateTime.h"
#include "support/Text.h"
#include "support/Version.h"

namespace tarnwick {
namespace {

TEST(Text, EveryWindows1252ByteSurvivesUtf8AndBack) {
  std::string all;
  for (int b = 1; b < 256; ++b) all += static_cast<char>(b);
  EXPECT_EQ(Utf8ToAnsi(AnsiToUtf8(all)), all);
  EXPECT_EQ(AnsiToUtf8("\x80"), "\xE2\x82\xAC");  // euro sign
  EXPECT_EQ(AnsiToUtf8("\xE9"), "\xC3\xA9");      // e acute
}

TEST(Text, CharactersOutsideTheCodePageAndBrokenUtf8BecomeQuestionMarks) {
  EXPECT_EQ(Utf8ToAnsi("\xE4\xB8\xAD"), "?");        // a CJK character
  EXPECT_EQ(Utf8ToAnsi("a\xC3"), "a?");              // truncated sequence
  EXPECT_EQ(Utf8ToAnsi("\xC3(b"), "?(b");            // bad continuation
  EXPECT_EQ(Utf8ToAnsi("\xF0\x9F\x98\x80!"), "?!");  // outside the BMP
}

TEST(Text, HashByteDiffersFromTheRawByteOnlyIn80To9F) {
  for (int b = 0; b < 256; ++b) {
    const auto byte = static_cast<unsigned char>(b);
    if (b < 0x80 || b > 0x9F) {
      EXPECT_EQ(HashByteOfAnsi(byte), byte) << b;
    }
  }
  EXPECT_EQ(HashByteOfAnsi(0x80), 0xAC);
  EXPECT_EQ(HashByteOfAnsi(0x9F), 0x78);  // U+0178
  EXPECT_EQ(HashByteOfAnsi(0x8D), 0x8D);  // undefined: itself
}

TEST(DateTime, DaysSinceThe30thOfDecember1899) {
  EXPECT_EQ(JoinDate({1899, 12, 30, 0, 0, 0}), 0.0);
  EXPECT_EQ(JoinDate({2000, 1, 1, 0, 0, 0}), 36526.0);
  EXPECT_EQ(JoinDate({2000, 1, 1, 18, 0, 0}), 36526.75);
  const DateParts parts = SplitDate(JoinDate({2024, 2, 29, 23, 59, 59}));
  EXPECT_EQ(FormatDateTime(JoinDate(parts)), "2024-02-29 23:59:59");
  // A fraction of a second never rounds the text up to the next second.
  EXPECT_EQ(FormatDateTime(JoinDate({2024, 2, 29, 23, 59, 59}) + 0.99 / kSecondsPerDay), "2024-02-29 23:59:59");
  EXPECT_DOUBLE_EQ(SecondsSinceMidnight(36526.75), 64800.0);
}

TEST(Version, AgentStringIsDescriptionAndVersion) {
  EXPECT_EQ(AgentString(), "Tarnwick Toolbar (v" + VersionText() + ")");
  const std::string version = VersionText();
  EXPECT_EQ(std::count(version.begin(), version.end(), '.'), 2);
}

}  // namespace
}  // namespace tarnwick

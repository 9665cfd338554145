// Base64 as server and toolbar use it for the pattern header, and the
// hexadecimal digits of escapes.
#include <gtest/gtest.h>

#include "support/Base64.h"
#include "support/Hex.h"

namespace tarnwick {
namespace {

TEST(Base64Test, RoundTripsEveryLengthAndByte) {
  std::string bytes;
  for (int i = 0; i < 256; ++i) bytes += static_cast<char>(i);
  for (std::size_t length = 0; length <= 7; ++length) {
    EXPECT_EQ(DecodeB64(EncodeBase64(bytes.substr(250 - length, length))), bytes.substr(250 - length, length));
  }
  EXPECT_EQ(DecodeB64(EncodeBase64(bytes)), bytes);
  EXPECT_EQ(EncodeBase64("a\tb"), "YQli");
  EXPECT_EQ(EncodeBase64("ab"), "YWI=");
  EXPECT_EQ(EncodeBase64("a"), "YQ==");
}

TEST(Base64Test, DecodingIsLenientAndNeverFails) {
  EXPECT_EQ(DecodeB64(""), "");
  EXPECT_EQ(DecodeB64("!!!"), "");
  EXPECT_EQ(DecodeB64("===="), "");
  EXPECT_EQ(DecodeB64("Q"), "");            // six bits make no byte
  EXPECT_EQ(DecodeB64("Y W\r\nI="), "ab");  // characters outside the alphabet are skipped
  EXPECT_EQ(DecodeB64("YQ==YWI="), "a");    // the first "=" ends the text
  EXPECT_EQ(DecodeB64("YWJj"), "abc");
}

TEST(HexTest, DigitsOfEitherCase) {
  EXPECT_EQ(HexDigitValue('0'), 0);
  EXPECT_EQ(HexDigitValue('F'), 15);
  EXPECT_EQ(HexDigitValue('a'), 10);
  for (char c : {'g', 'G', 'x', ' ', '/', ':', '@', '`', '\0'}) EXPECT_EQ(HexDigitValue(c), -1) << c;
  EXPECT_EQ(HexByte('4', 'f'), 0x4F);
  EXPECT_EQ(HexByte('4', 'g'), std::nullopt);
  EXPECT_EQ(PercentDecode("%41%2f%zz%4+x%"), "A/%zz%4+x%");
  EXPECT_EQ(PercentDecode("a+b%2B", true), "a b+");
  std::string out;
  AppendHexByte(out, 0xE9, HexLetters::Upper);
  AppendHexByte(out, 0x0A, HexLetters::Lower);
  EXPECT_EQ(out, "E90a");
}

}  // namespace
}  // namespace tarnwick

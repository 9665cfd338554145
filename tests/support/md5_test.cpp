#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/CMD5.h"

namespace tarnwick {
namespace {

std::vector<std::uint8_t> Bytes(std::string_view text) { return {text.begin(), text.end()}; }

TEST(CMD5, Rfc1321TestSuiteThroughTextAndBytes) {
  const std::pair<const char*, const char*> suite[] = {
      {"", "d41d8cd98f00b204e9800998ecf8427e"},
      {"a", "0cc175b9c0f1b6a831c399e269772661"},
      {"abc", "900150983cd24fb0d6963f7d28e17f72"},
      {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
      {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
      {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789", "d174ab98d277d9f5a5611c2c9f419d9f"},
      {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
       "57edf4a22be3c955ac49da2e2107b67a"},
  };
  CMD5 md5;
  for (const auto& [input, expected] : suite) {
    EXPECT_EQ(md5.MD5(input), expected) << input;
    EXPECT_EQ(md5.MD5Byte(Bytes(input)), expected) << input;
  }
}

TEST(CMD5, LengthsAroundTheBlockBoundary) {
  // From 56 bytes on, the length field no longer fits the last block.
  const std::pair<int, const char*> cases[] = {{55, "04364420e25c512fd958a70738aa8f72"},
                                               {56, "668a72d5ba17f08e62dabcafad6db14b"},
                                               {63, "7dc2ca208106a2f703567bdff99d8981"},
                                               {64, "c1bb4f81d892b2d57947682aeb252456"},
                                               {65, "1bc932052302d074bdec39795fe00cf6"}};
  CMD5 md5;
  for (const auto& [length, expected] : cases) EXPECT_EQ(md5.MD5(std::string(length, 'x')), expected) << length;
}

TEST(CMD5, LargeInputsMatchAnIndependentImplementation) {
  // Expected values from Python's hashlib.
  CMD5 md5;
  EXPECT_EQ(md5.MD5(std::string(1000000, 'a')), "7707d6ae4e027c70eea2a935c2296f21");
  std::vector<std::uint8_t> data(3000000);
  for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<std::uint8_t>((i * 7 + 13) % 251);
  EXPECT_EQ(md5.MD5Byte(data), "f6593a365d9972de763fe7fbc1f84413");
}

TEST(CMD5, TextMapsBytes80To9FThroughWindows1252) {
  CMD5 md5;
  // The euro sign 0x80 is U+20AC: its low byte 0xAC is hashed, not 0x80.
  EXPECT_EQ(md5.MD5("\x80"), md5.MD5Byte(std::vector<std::uint8_t>{0xAC}));
  // Undefined positions keep their own value.
  EXPECT_EQ(md5.MD5("\x81"), md5.MD5Byte(std::vector<std::uint8_t>{0x81}));
  // Above 0x9F text and bytes agree.
  EXPECT_EQ(md5.MD5("\xE9t\xE9"), md5.MD5Byte(std::vector<std::uint8_t>{0xE9, 't', 0xE9}));
  // All 256 byte values: hashlib over the Windows-1252 low bytes, and over the raw bytes.
  std::string all;
  for (int b = 0; b < 256; ++b) all += static_cast<char>(b);
  EXPECT_EQ(md5.MD5(all), "eeb93b2de2b15f96c6abbd032a780aab");
  EXPECT_EQ(md5.MD5Byte(Bytes(all)), "e2c865db4162bed963bfaa9ef6ac18f0");
}

TEST(CMD5, RawMD5IsTheDigestOfTheHexForm) {
  CMD5 md5;
  const auto raw = md5.RawMD5("abc");
  ASSERT_EQ(raw.size(), 16u);
  EXPECT_EQ(raw.front(), 0x90);
  EXPECT_EQ(raw.back(), 0x72);
  EXPECT_EQ(md5.RawMD5("\x80"), md5.RawMD5("\xAC"));
}

}  // namespace
}  // namespace tarnwick

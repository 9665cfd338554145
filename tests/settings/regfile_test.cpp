#include <gtest/gtest.h>

#include "settings/RegFile.h"
#include "settings/SettingsStore.h"

namespace tarnwick {
namespace {

using namespace std::string_literals;

constexpr const char* kKey = "HKEY_CURRENT_USER\\Software\\Tarnwick\\Toolbar\\Settings";

TEST(RegFile, EveryTypeAndEscapeSurvivesARoundTrip) {
  RegFile file;
  const std::string awkward = "quote\" back\\ nl\n cr\r tab\t nul\0 high\xE9\x80 end"s;
  file.SetValue(kKey, {"Text", kRegSz, awkward});
  file.SetValue(kKey, {"Number", kRegDword, std::string("\x28\x00\x00\x80", 4)});
  file.SetValue(kKey, {"Blob", kRegBinary, std::string("\x00\xFF\x10", 3)});
  file.SetValue(kKey, {"Expand", 2, "x"});
  file.SetValue(kKey, {"Name \"quoted\"", kRegSz, ""});

  const std::string text = file.Serialize();
  EXPECT_NE(text.find("\"Number\"=dword:80000028"), std::string::npos) << text;
  EXPECT_NE(text.find("\"Blob\"=hex:00,ff,10"), std::string::npos) << text;
  EXPECT_NE(text.find("\"Expand\"=hex(2):78"), std::string::npos) << text;

  const RegFile back = RegFile::Parse(text);
  EXPECT_TRUE(back.UnreadableLines().empty());
  EXPECT_EQ(back.FindValue(kKey, "Text")->data, awkward);
  EXPECT_EQ(back.FindValue(kKey, "number")->data, std::string("\x28\x00\x00\x80", 4));
  EXPECT_EQ(back.FindValue(kKey, "Blob")->type, kRegBinary);
  EXPECT_EQ(back.FindValue(kKey, "Expand")->type, 2u);
  EXPECT_NE(back.FindValue(kKey, "Name \"quoted\""), nullptr);
  EXPECT_EQ(back.Serialize(), text);
}

TEST(RegFile, DamagedLinesAreKeptInPlaceAndGoodValuesSurvive) {
  const std::string damaged =
      "REGEDIT4\r\n"
      "\r\n"
      "[HKEY_CURRENT_USER\\Software\\Tarnwick\\Toolbar\\Settings]\r\n"
      "\"Debug\"=\"1\"\r\n"
      "\"Bad\"=\"unknown \\q escape\"\r\n"
      "garbage without quotes\r\n"
      "\"Short\"=dword:123456789\r\n"
      "\"Odd\"=hex:1,2\r\n"
      "[broken header\r\n"
      "; a comment\r\n"
      "\"BarHeight\"=dword:00000028\r\n";
  RegFile file = RegFile::Parse(damaged);
  EXPECT_EQ(file.UnreadableLines().size(), 5u);
  EXPECT_EQ(file.FindValue(kKey, "Debug")->data, "1");
  EXPECT_EQ(file.FindValue(kKey, "BarHeight")->type, kRegDword);
  EXPECT_EQ(file.FindValue(kKey, "Bad"), nullptr);

  file.SetValue(kKey, {"ServerTimeout", kRegSz, "5"});
  EXPECT_TRUE(file.DeleteValue(kKey, "debug"));
  const std::string rewritten = file.Serialize();
  for (const auto& line : {"\"Bad\"=\"unknown \\q escape\"", "garbage without quotes", "[broken header", "; a comment",
                           "\"Odd\"=hex:1,2"}) {
    EXPECT_NE(rewritten.find(line), std::string::npos) << line;
  }
  EXPECT_EQ(rewritten.find("\"Debug\""), std::string::npos);
  EXPECT_EQ(RegFile::Parse(rewritten).FindValue(kKey, "ServerTimeout")->data, "5");
}

TEST(RegFile, AnyRunOfCarriageReturnsEndsALine) {
  // A file converted to CR LF twice: its values read, and what cannot be
  // read reads the same once written back.
  const RegFile file = RegFile::Parse("REGEDIT4\r\r\n\r\r\n["s + kKey +
                                      "]\r\r\n\"Debug\"=\"1\"\r\r\njunk\r\r\n[HKEY_CURRENT_USER\\Other]\r\r\r\n");
  ASSERT_NE(file.FindValue(kKey, "Debug"), nullptr);
  EXPECT_EQ(file.FindValue(kKey, "Debug")->data, "1");
  EXPECT_TRUE(file.HasKey("HKEY_CURRENT_USER\\Other"));
  EXPECT_EQ(file.UnreadableLines(), std::vector<std::string>{"junk"});
  const RegFile again = RegFile::Parse(file.Serialize());
  EXPECT_EQ(again.UnreadableLines(), file.UnreadableLines());
  EXPECT_EQ(again.Serialize(), file.Serialize());
}

TEST(RegFile, KeysExistAboveTheirSectionsAndCompareWithoutCase) {
  RegFile file;
  file.AddKey(kKey);
  EXPECT_TRUE(file.HasKey("HKEY_CURRENT_USER\\Software\\Tarnwick"));
  EXPECT_TRUE(file.HasKey("hkey_current_user\\software\\tarnwick\\toolbar\\settings"));
  EXPECT_FALSE(file.HasKey("HKEY_CURRENT_USER\\Software\\Tarn"));
  EXPECT_FALSE(file.DeleteValue(kKey, "Missing"));
  EXPECT_FALSE(file.DeleteValue("HKEY_CURRENT_USER\\Other", "Missing"));
}

}  // namespace
}  // namespace tarnwick

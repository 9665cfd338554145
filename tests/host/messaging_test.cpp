#include <gtest/gtest.h>

#include <cstring>
#include <sstream>

#include "Install.h"
#include "Messages.h"
#include "NativeMessaging.h"

namespace tarnwick::host {
namespace {

std::string Framed(std::string_view body) {
  std::ostringstream out;
  EXPECT_TRUE(WriteFrame(out, body));
  return out.str();
}

std::string Announced(std::uint32_t length, std::string_view body) {
  std::string bytes(4, '\0');
  std::memcpy(bytes.data(), &length, 4);
  return bytes + std::string(body);
}

TEST(NativeMessagingTest, FramesFollowEachOtherAndALongOneIsReadPast) {
  std::istringstream in(Framed("{\"a\":1}") + Framed("") + Announced(20, std::string(20, 'x')) + Framed("[2]"));
  Frame frame = ReadFrame(in, 10);
  EXPECT_EQ(frame.status, FrameStatus::Message);
  EXPECT_EQ(frame.body, "{\"a\":1}");
  frame = ReadFrame(in, 10);
  EXPECT_EQ(frame.status, FrameStatus::Message);
  EXPECT_EQ(frame.body, "");
  frame = ReadFrame(in, 10);
  EXPECT_EQ(frame.status, FrameStatus::TooLarge);
  EXPECT_EQ(frame.length, 20u);
  EXPECT_EQ(ReadFrame(in, 10).body, "[2]");
  EXPECT_EQ(ReadFrame(in, 10).status, FrameStatus::End);
}

TEST(NativeMessagingTest, AStreamCutInsideAFrameIsTruncated) {
  for (const std::string& bytes : {std::string("\x05\x00", 2), Announced(5, "abc"), Announced(0xFFFFFFFF, "abc")}) {
    std::istringstream in(bytes);
    EXPECT_EQ(ReadFrame(in).status, FrameStatus::Truncated);
  }
}

TEST(NativeMessagingTest, NoReplyLongerThanTheBrowserTakesIsWritten) {
  std::ostringstream out;
  EXPECT_FALSE(WriteFrame(out, std::string(kMaxOutgoingBytes + 1, 'x')));
  EXPECT_EQ(out.str(), "");
}

TEST(MessagesTest, OnlyObjectsOfAKnownTypeWithTheirTabAreMessages) {
  const std::pair<const char*, const char*> bad[] = {
      {"", "the message is not JSON"},
      {"{\"type\":", "the message is not JSON"},
      {"\"\xff\"", "the message is not JSON"},
      {"[1,2]", "the message is not a JSON object"},
      {"{}", "the message has no type"},
      {"{\"type\":7}", "the message has no type"},
      {"{\"id\":[1],\"type\":\"hello\"}", "id is not a number or a text"},
      {"{\"id\":3,\"type\":\"format-disk\"}", "unknown message type \"format-disk\""},
      {"{\"type\":\"navigate\",\"url\":\"http://a.test/\"}", "navigate needs a tab (a whole number)"},
      {"{\"type\":\"navigate\",\"tab\":\"1\"}", "navigate needs a tab (a whole number)"},
      {"{\"type\":\"navigate\",\"tab\":-1}", "navigate needs a tab (a whole number)"},
      {"{\"type\":\"navigate\",\"tab\":2147483648}", "navigate needs a tab (a whole number)"},
      {"{\"type\":\"navigate\",\"tab\":1.5}", "navigate needs a tab (a whole number)"},
  };
  for (const auto& [text, error] : bad) {
    const auto read = ReadMessage(text);
    ASSERT_TRUE(std::holds_alternative<MessageError>(read)) << text;
    EXPECT_EQ(std::get<MessageError>(read).error, error) << text;
  }
  EXPECT_EQ(std::get<MessageError>(ReadMessage("{\"id\":3,\"type\":\"x\"}")).id, 3);

  const auto read = ReadMessage("{\"id\":\"n1\",\"type\":\"navigate\",\"tab\":2147483647,\"url\":\"http://a.test/\"}");
  ASSERT_TRUE(std::holds_alternative<Message>(read));
  const Message& message = std::get<Message>(read);
  EXPECT_EQ(message.id, "n1");
  EXPECT_EQ(message.tab, 2147483647);
  EXPECT_EQ(TextMember(message.body, "url"), "http://a.test/");
  EXPECT_EQ(TextMember(message.body, "tab", "none"), "none");
  EXPECT_FALSE(BoolMember(message.body, "url"));
  EXPECT_EQ(IntegerMember(message.body, "url"), std::nullopt);
  EXPECT_EQ(std::get<Message>(ReadMessage("{\"type\":\"menus\"}")).tab, std::nullopt);
}

TEST(InstallTest, TheManifestNamesThisProgramForTheExtensionAlone) {
  const auto manifest = nlohmann::json::parse(ManifestText("/opt/tarnwick/bin/tarnwick-host"));
  EXPECT_EQ(manifest["name"], kHostName);
  EXPECT_EQ(manifest["path"], "/opt/tarnwick/bin/tarnwick-host");
  EXPECT_EQ(manifest["type"], "stdio");
  EXPECT_EQ(manifest["allowed_origins"], nlohmann::json::array({"chrome-extension://" TARNWICK_EXTENSION_ID "/"}));
  EXPECT_EQ(ManifestFolder(std::filesystem::path("/p")), std::filesystem::path("/p/NativeMessagingHosts"));
}

}  // namespace
}  // namespace tarnwick::host

// `tarnwick check` end to end: the real program and the real reference
// server, each in a process of its own, talking over loopback.
#include "CommandTest.h"

namespace tarnwick::testing {
namespace {

class CheckCommandTest : public CommandTest {
 protected:
  std::pair<std::string, int> Check(const std::string& urls, const std::string& flags) {
    return Run("check", flags, urls);
  }
};

TEST_F(CheckCommandTest, EachKindOfVerdictAsJsonLines) {
  const auto [output, status] = Check(
      "mailto:someone@tarnwick.example\n"
      "http://intranet/\n"
      "http://shop.example/?q=%3Cscript%3Ealert(1)%3C/script%3E\n"
      "http://www.bank.example@evil.example/\n"
      "http://paypal-resolution-center.example/signin\n"
      "http://florist.example.org/spring.html\n",
      "--json");
  EXPECT_EQ(status, 1);
  const std::string lines[] = {
      R"({"url":"mailto:someone@tarnwick.example","checked":false,"blocked":false,"step":"scheme",)",
      R"({"url":"http://intranet/","checked":false,"blocked":false,"step":"zone","risk_rank":-1,)"
      R"("last_response":"This site is in your Local Intranet zone.","message":null})",
      R"({"url":"http://shop.example/?q=%3Cscript%3Ealert(1)%3C/script%3E","checked":true,"blocked":true,"step":"xss",)",
      R"({"url":"http://www.bank.example@evil.example/","checked":true,"blocked":true,"step":"local",)",
      R"({"url":"http://paypal-resolution-center.example/signin","checked":true,"blocked":true,"step":"remote",)",
      R"({"url":"http://florist.example.org/spring.html","checked":true,"blocked":false,"step":null,)",
  };
  for (const auto& line : lines) EXPECT_NE(output.find(line), std::string::npos) << line << "\n" << output;
}

TEST_F(CheckCommandTest, AnsweringYesAllowsAndBadFlagsAreErrors) {
  const auto [output, status] = Check("http://www.bank.example@evil.example/\n", "--answer yes");
  EXPECT_EQ(status, 0);
  EXPECT_NE(output.find("allowed, checked, step: local"), std::string::npos) << output;
  EXPECT_EQ(Check("", "--answer maybe").second, 2);
  EXPECT_EQ(Check("", "--post-data /nonexistent/file").second, 2);
}

}  // namespace
}  // namespace tarnwick::testing

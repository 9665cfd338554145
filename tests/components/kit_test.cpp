// The kit's entry points and marshalling, through a probe component loaded
// from its library file: every kind of value both ways, arguments changed by
// reference, and each kind of failure with its number.
#include <gtest/gtest.h>

#include <array>

#include "components/ComponentTest.h"

namespace tarnwick::testing {
namespace {

class KitTest : public ComponentTest {
 protected:
  long Call(std::string_view member, std::span<Variant> args, Variant& result, std::string& error) {
    return probe->Invoke(member, args, result, error);
  }
  std::unique_ptr<ComponentObject> probe = Create(kBuiltProbe, kProbeProgId);
};

TEST_F(KitTest, EveryKindOfValueCrossesUnchanged) {
  const std::array<Variant, 9> values{
      Variant(),
      Variant(true),
      Variant(false),
      Variant(std::int32_t{-2147483647 - 1}),
      Variant(std::string("caf\xE9 \x80 5\0tail", 12)),  // Windows-1252 bytes, the euro sign, a NUL
      Variant(std::string()),
      Variant(std::vector<std::string>{"one", "", "thr\xE9\xE9"}),
      Variant(std::vector<std::string>{}),
      Variant(std::vector<std::uint8_t>{0, 1, 127, 128, 255}),
  };
  for (const Variant& value : values) {
    std::array args{value};
    Variant result;
    std::string error;
    ASSERT_EQ(Call("Echo", args, result, error), kInvokeOk) << error;
    EXPECT_EQ(result, value) << "kind " << value.index();
  }
}

TEST_F(KitTest, MembersWriteIntoTheirArguments) {
  std::array<Variant, 2> fill{std::vector<std::uint8_t>{9}, std::int32_t{300}};
  Variant result;
  std::string error;
  ASSERT_EQ(Call("Fill", fill, result, error), kInvokeOk) << error;
  EXPECT_EQ(result, Variant(std::int32_t{300}));
  const auto& buffer = std::get<std::vector<std::uint8_t>>(fill[0]);
  ASSERT_EQ(buffer.size(), 300u);
  EXPECT_EQ(buffer[299], 299 % 256);

  // An empty argument becomes the array; a number passed as text still counts.
  std::array<Variant, 2> fresh{Variant(), std::string("3")};
  ASSERT_EQ(Call("Fill", fresh, result, error), kInvokeOk) << error;
  EXPECT_EQ(fresh[0], Variant(std::vector<std::uint8_t>{0, 1, 2}));

  std::array<Variant, 1> text{std::string("quiet")};
  ASSERT_EQ(Call("shout", text, result, error), kInvokeOk) << "member names ignore case";
  EXPECT_EQ(text[0], Variant(std::string("QUIET")));
  EXPECT_EQ(result, Variant());
}

TEST_F(KitTest, FailuresComeBackAsNumbersWithTheirText) {
  struct Case {
    const char* member;
    std::vector<Variant> args;
    long number;
    const char* text;
  };
  const Case cases[] = {
      {"Vanish", {}, kErrMemberNotFound, "Vanish"},
      {"Echo", {}, kErrInvalidArgument, "Wrong number of arguments"},
      {"Echo", {Variant(), Variant()}, kErrInvalidArgument, "Wrong number of arguments"},
      {"Fill", {std::string("no buffer"), std::int32_t{1}}, kErrInvalidArgument, "not a byte array"},
      {"Fill", {Variant(), std::string("many")}, kErrInvalidArgument, "not a number"},
      {"Fail", {std::string("the probe gave up")}, kErrComponent, "the probe gave up"},
  };
  for (const Case& c : cases) {
    std::vector<Variant> args = c.args;
    Variant result;
    std::string error;
    EXPECT_EQ(Call(c.member, args, result, error), c.number) << c.member;
    EXPECT_NE(error.find(c.text), std::string::npos) << c.member << ": " << error;
  }
}

}  // namespace
}  // namespace tarnwick::testing

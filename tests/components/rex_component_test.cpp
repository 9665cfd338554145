// Tarnwick.Rex loaded from tarnwickrex.dll and called through the Rex
// wrapper, as the check engine, the host-name routines and the information
// strip call it.
#include <gtest/gtest.h>

#include <array>
#include <optional>

#include "check/Rex.h"
#include "components/ComponentTest.h"

namespace tarnwick::testing {
namespace {

using Groups = std::vector<std::string>;

class RexTest : public ComponentTest {
 protected:
  std::unique_ptr<ComponentObject> object = Create(kBuiltRex, kRexProgId);
  Rex rex{*object};
};

TEST_F(RexTest, TheProgramsTestPatterns) {
  struct Case {
    const char* subject;
    const char* pattern;
    const char* flags;
    bool matches;
  };
  const Case cases[] = {
      // Schemes that are never checked, and whether a URL has a web scheme.
      {"javascript:alert(1)", "^(javascript|jscript|vbscript|telnet|about|msc|htc|hcp|callto|ymsgr|res|mailto):", "",
       true},
      {"http://mailto.example/", "^(javascript|jscript|vbscript|telnet|about|msc|htc|hcp|callto|ymsgr|res|mailto):", "",
       false},
      {"ftp://files.example/", R"(^(?:https?|ftp):\/\/)", "", true},
      {"news://files.example/", R"(^(?:https?|ftp):\/\/)", "", false},
      // A localblock.dat line ("i") and a server pattern (no flags).
      {"HTTPS://Secure.PAYPA1.example:8443/login", R"(^https?://([^/]*\.)?paypa1\.example(:\d+)?(/|$))", "i", true},
      {"https://paypa1.example.org/", R"(^https?://([^/]*\.)?paypa1\.example(:\d+)?(/|$))", "i", false},
      {"HTTP://site.example/bad/page", R"(^https?://site\.example/bad/)", "", false},
      {"http://site.example/bad/page", R"(^https?://site\.example/bad/)", "", true},
      // Numeric host names.
      {"3232235521", R"(^(?:x[0-9]|[0-9\.])+$)", "", true},
      {"192.168.0.1", R"(^(?:x[0-9]|[0-9\.])+$)", "", true},
      {"x7f.example", R"(^(?:x[0-9]|[0-9\.])+$)", "", false},
      // An xss.dat line: "s" lets the dot cross line breaks, "i" ignores case.
      {"q=<SCRIPT>\nalert(1)\n</script>", "<script[^>]*>.*</script>", "si", true},
      {"q=<SCRIPT>\nalert(1)\n</script>", "<script[^>]*>.*</script>", "i", false},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(rex.Test(c.subject, c.pattern, c.flags), c.matches) << c.pattern << " on " << c.subject;
  }
}

TEST_F(RexTest, TheProgramsReplacements) {
  struct Case {
    std::string subject;
    const char* pattern;
    const char* replacement;
    const char* flags;
    std::string expected;
  };
  const Case cases[] = {
      {"hxxp://evil.example/", R"(^[\w\d_-]{2,20}://)", "http://", "i", "http://evil.example/"},
      {"c:/boot.ini", R"(^[\w\d_-]{2,20}://)", "http://", "i", "c:/boot.ini"},
      // Percent-decoding: both cases of hex digits, only the first without "g".
      {"%2F%2f%41%zz", R"(\%([\da-f]{2}))", "chr(hex($1))", "ige", "//A%zz"},
      {"%41%42", R"(\%([\da-f]{2}))", "chr(hex($1))", "ie", "A%42"},
      // Host name clean-up.
      {std::string("ex\x01"
                   "am\xFFple\x7F.com"),
       R"([\x00-\x1f\x7f-\xff]+)", "", "g", "example.com"},
      {"..www.example.com...", R"(^\.+|\.+$)", "", "g", "www.example.com"},
      {"www...example..com", R"(\.{2,})", ".", "g", "www.example.com"},
      {"ex ample_1.com", R"(([^A-Za-z0-9\-\.]))", "'%'.sprintf('%02x', ord($1))", "ge", "ex%20ample%5f1.com"},
      {"caf\xE9.example", R"(([^A-Za-z0-9\-\.]))", "'%'.sprintf('%02x', ord($1))", "ge", "caf%e9.example"},
      // Cross-site scripting clean-up.
      {"a+b++c", R"(\+)", " ", "g", "a b  c"},
      {std::string("a\x01"
                   "b\tc\r\n\xE9"),
       R"([\x00-\x08\x0e-\x1f\x7f-\xff])", "", "g", "ab\tc\r\n"},
      {"&#x41;&#65&#X6a;&#106;", R"(&#(?:x([\da-f]*)|([\d]*));?)", "chr($1 ? hex($1) : $2)", "ige", "AAjj"},
      {"a&#x;b", R"(&#(?:x([\da-f]*)|([\d]*));?)", "chr($1 ? hex($1) : $2)", "ige", std::string("a\0b", 3)},
      {R"(java\scr\ipt)", R"(\\)", "", "g", "javascript"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(rex.Replace(c.subject, c.pattern, c.replacement, c.flags), c.expected)
        << c.pattern << " on " << c.subject;
  }
}

TEST_F(RexTest, MatchGivesGroupsAndEveryMatchsGroupsInTurnWithG) {
  EXPECT_EQ(rex.Match("http://www.example.com:8080/path", R"(^((?:https?|ftp):\/\/[^\/]+))", "i"),
            Groups{"http://www.example.com:8080"});
  EXPECT_EQ(rex.Match("http://user:pw@Host.Example:81/x?y", R"(^[^:]+://(?:[^\?/]+@)?([^\\/\?:]+))"),
            Groups{"Host.Example"});

  // The information strip's two patterns: four groups, then three, per match.
  EXPECT_EQ(rex.Match(R"(Rated <a href="http://s.example/faq">low</a> risk. <A HREF='/more'>More</A> info)",
                      R"((.*?)<a\s+href\s*=\s*["']([^"']*)["']>([^<]*)<\/a>([^<]*))", "ig"),
            (Groups{"Rated ", "http://s.example/faq", "low", " risk. ", "", "/more", "More", " info"}));
  EXPECT_EQ(rex.Match("Hosted in [US] United States, mirror in [de] Germany", R"((.*?)(\[[A-Z]{2}\])([^\[]*))", "ig"),
            (Groups{"Hosted in ", "[US]", " United States, mirror in ", "", "[de]", " Germany"}));

  // A group that took no part is "", so every match has its full share.
  EXPECT_EQ(rex.Match("ab", "(a)|(b)", "g"), (Groups{"a", "", "", "b"}));
  // Without groups, the whole matches; after an empty match the next one
  // starts further on, as Perl has it.
  EXPECT_EQ(rex.Match("a1b22", R"(\d+)", "g"), (Groups{"1", "22"}));
  EXPECT_EQ(rex.Match("ab", "x*", "g"), (Groups{"", "", ""}));
}

TEST_F(RexTest, NoMatchIsNotAnArrayButAnEmptyGroupIs) {
  EXPECT_EQ(rex.Match("abc", "(x)"), std::nullopt);
  EXPECT_EQ(rex.Match("abc", "(x?)"), Groups{""});

  std::array<Variant, 2> args{std::string("abc"), std::string("(x)")};
  Variant result;
  std::string error;
  ASSERT_EQ(object->Invoke("Match", args, result, error), kInvokeOk) << error;
  EXPECT_TRUE(std::holds_alternative<std::monostate>(result));
}

TEST_F(RexTest, BrokenAndRunawayPatternsAnswerNoMatchWithOneDebugLine) {
  EnableDebugLog();
  object = Create(kBuiltRex, kRexProgId);  // reads the Debug setting
  Rex debugging{*object};
  const std::string runaway = std::string(30000, 'a') + "!";
  struct Case {
    std::string subject;
    const char* pattern;
    const char* logged;
  };
  const Case cases[] = {
      {"abc", "(abc", "(Rex) Pattern does not compile (missing closing parenthesis at offset 4): (abc"},
      {"abc", "[a-", "(Rex) Pattern does not compile ("},
      {"abc", "a{2,1}", "(Rex) Pattern does not compile ("},
      {"abc", R"(\)", "(Rex) Pattern does not compile ("},
      {runaway, "(a+)+$", "(Rex) Pattern gave up (match limit exceeded): (a+)+$"},
      {runaway, "(a|aa)+$", "(Rex) Pattern gave up ("},
      {runaway, "^(\\w+\\s?)*$", "(Rex) Pattern gave up ("},
  };
  for (const Case& c : cases) {
    const auto before = ComponentLog().size();
    EXPECT_FALSE(debugging.Test(c.subject, c.pattern)) << c.pattern;
    EXPECT_EQ(debugging.Match(c.subject, c.pattern, "g"), std::nullopt) << c.pattern;
    EXPECT_EQ(debugging.Replace(c.subject, c.pattern, "x", "g"), c.subject) << c.pattern;
    const auto log = ComponentLog();
    ASSERT_EQ(log.size(), before + 3) << c.pattern;
    for (std::size_t i = before; i < log.size(); ++i) {
      EXPECT_EQ(log[i].rfind(std::string("(debug) ") + c.logged, 0), 0u) << log[i];
    }
  }
  // The same patterns still answer at once for a subject they can handle.
  EXPECT_TRUE(debugging.Test("aaa", "(a+)+$"));
}

TEST_F(RexTest, AReplacementThatCannotBeReadLeavesTheSubjectAndIsAnError) {
  EnableDebugLog();
  object = Create(kBuiltRex, kRexProgId);
  Rex debugging{*object};
  EXPECT_EQ(debugging.Replace("%41", R"(%(\d\d))", "chr(hex($1)", "ge"), "%41");
  EXPECT_EQ(ComponentLog().back(),
            "(debug) (Rex) Replacement cannot be evaluated (expected ')' at position 12): chr(hex($1)");

  std::array<Variant, 4> args{std::string("%41"), std::string(R"(%(\d\d))"), std::string("system($1)"),
                              std::string("e")};
  Variant result;
  std::string error;
  EXPECT_EQ(object->Invoke("Replace", args, result, error), kErrComponent);
  EXPECT_NE(error.find("unknown function 'system'"), std::string::npos) << error;
}

TEST_F(RexTest, PrepareCompilesAheadAndSaysWhetherItCould) {
  const char* links = R"((.*?)<a\s+href\s*=\s*["']([^"']*)["']>([^<]*)<\/a>([^<]*))";
  EXPECT_TRUE(rex.Prepare(links, "ig"));
  EXPECT_EQ(rex.Match(R"(<a href="/x">X</a>)", links, "ig"), (Groups{"", "/x", "X", ""}));
  // A different call on the same object is not confused by the prepared one.
  EXPECT_EQ(rex.Match(R"(<A HREF="/x">X</A>)", links, ""), std::nullopt);
  EXPECT_FALSE(rex.Prepare("(unclosed", "ig"));
}

TEST_F(RexTest, UnknownFlagLettersAreIgnoredAndWrongCallsAnswerNoMatch) {
  EXPECT_TRUE(rex.Test("ABC", "abc", "xqiz"));
  EXPECT_EQ(rex.Replace("aaa", "a", "b", "gmq"), "bbb");

  std::array<Variant, 1> tooFew{std::string("abc")};
  Variant result;
  std::string error;
  EXPECT_EQ(object->Invoke("Test", tooFew, result, error), kErrInvalidArgument);
  EXPECT_EQ(object->Invoke("Compile", tooFew, result, error), kErrMemberNotFound);
}

}  // namespace
}  // namespace tarnwick::testing

// Pattern sets: the atoms read from patterns, the scanner that finds them,
// and the set's answers through Tarnwick.Rex, which must be those of the
// patterns tried one by one with Test, pattern for pattern.
#include <gtest/gtest.h>

#include <random>
#include <set>
#include <thread>

#include "AtomScanner.h"
#include "HostIndex.h"
#include "Pcre.h"
#include "RequiredAtoms.h"
#include "check/PatternList.h"
#include "components/ComponentTest.h"
#include "support/PatternSetAnswer.h"

namespace tarnwick::testing {
namespace {

using rex::RequiredAtoms;
using Atoms = std::optional<std::vector<std::string>>;

TEST(RequiredAtomsTest, LiteralTextThePatternCannotMatchWithout) {
  struct Case {
    const char* pattern;
    Atoms atoms;
  };
  const Case cases[] = {
      // A generated block-list line: the host is the rarest demand.
      {R"(^https?://([^/]*\.)?Paypa1\.example(:\d+)?(/|$))", Atoms{{"paypa1.example"}}},
      {R"(^https?://)", Atoms{{"http://", "https://"}}},
      {"abc|defg", Atoms{{"abc", "defg"}}},
      {"(?:abc)+x", Atoms{{"abc"}}},
      {R"(\Qa.b\E)", Atoms{{"a.b"}}},
      {R"(\x41\x{42}c\n)", Atoms{{"abc\n"}}},
      // A quantifier after \E, or after an empty \Q\E, takes the character
      // before it.
      {R"(\Qxyz\E*)", Atoms{{"xy"}}},
      {R"(ab\Q\E*cd)", Atoms{{"cd"}}},
      {"ab{0}cde", Atoms{{"cde"}}},
      {"(?<=/)login(?=\\.php)", Atoms{{"login"}}},
      {"(?i:Secure)-(\\w+)\\1", Atoms{{"secure-"}}},
      {"x{a}", Atoms{{"x{a}"}}},
      // White space that may be there or not is read past, as long as any
      // of its characters counts too.
      {R"(\bj\s*a\s*v\s*a\s*(?::|&colon;))", Atoms{{"\t", "\n", "\v", "\f", "\r", " ", "java:", "java&colon;"}}},
      {R"(a\sb)", Atoms{{"a\tb", "a\nb", "a\vb", "a\fb", "a\rb", "a b"}}},
      {R"(<\s*/?\s*script)", Atoms{{"script"}}},
      // Nothing demanded: an empty branch, optional text, classes.
      {"abc|", std::nullopt},
      {"(?:abc)?", std::nullopt},
      {"a*b?[xyz]+.", std::nullopt},
      {"\xE9t\xE9", Atoms{{"t"}}},
      // Constructs read as demanding nothing at all.
      {"(*UTF)(?i)kelvin", std::nullopt},
      {"(?x) a b c", std::nullopt},
      {"(?#note)abc", std::nullopt},
      {"[[:alpha:]]+login", std::nullopt},
      {"(?(1)abc|def)", std::nullopt},
      {"(?C1)abc", std::nullopt},
      {"a{,3}bcd", std::nullopt},
      {"\\qabc", std::nullopt},
      {"(abc", std::nullopt},
      {"abc)", std::nullopt},
  };
  for (const Case& c : cases) EXPECT_EQ(RequiredAtoms(c.pattern), c.atoms) << c.pattern;
}

TEST(RequiredAtomsTest, ClassesEndWhereTheyEnd) {
  // The first ']' of a class is a member, as is an escaped one: the literal
  // text after the class is what is demanded.
  EXPECT_EQ(RequiredAtoms("[]a]login"), Atoms{{"login"}});
  EXPECT_EQ(RequiredAtoms("[^]a]login"), Atoms{{"login"}});
  EXPECT_EQ(RequiredAtoms("[\\]x]login"), Atoms{{"login"}});
  EXPECT_EQ(RequiredAtoms("[\\c]]login"), Atoms{{"login"}});
  EXPECT_EQ(RequiredAtoms("[a\\Q]\\E]login"), std::nullopt);
}

TEST(AtomScannerTest, FoldingEightBytesAtATimeFoldsEachByteAlone) {
  for (int first = 0; first < 256; first += 8) {
    std::uint64_t word = 0;
    for (int i = 0; i < 8; ++i) word |= std::uint64_t(first + i) << (8 * i);
    const std::uint64_t folded = rex::FoldWord(word);
    for (int i = 0; i < 8; ++i) {
      ASSERT_EQ(static_cast<char>(folded >> (8 * i)), rex::FoldByte(static_cast<char>(first + i))) << first + i;
    }
  }
}

// Each occurrence of each atom in the subject, its letters folded to lower
// case, by the atom's number.
std::multiset<std::uint32_t> NaiveSearch(const std::vector<std::string>& atoms, std::string subject) {
  for (char& c : subject) c = rex::FoldByte(c);
  std::multiset<std::uint32_t> occurrences;
  for (std::uint32_t atom = 0; atom < atoms.size(); ++atom) {
    for (auto at = subject.find(atoms[atom]); at != std::string::npos; at = subject.find(atoms[atom], at + 1)) {
      occurrences.insert(atom);
    }
  }
  return occurrences;
}

// Some of the subject's letters in upper case, as URLs may have them: the
// atoms are found all the same.
std::string Shout(std::string subject, std::mt19937& random) {
  for (char& c : subject) {
    if (c >= 'a' && c <= 'z' && random() % 3 == 0) c = static_cast<char>(c - 'a' + 'A');
  }
  return subject;
}

std::multiset<std::uint32_t> Found(const rex::AtomScanner& scanner, const std::string& subject) {
  std::multiset<std::uint32_t> found;
  scanner.Scan(subject, [&](std::uint32_t atom) { found.insert(atom); });
  return found;
}

// `length` bytes drawn from `alphabet`.
std::string RandomText(std::mt19937& random, std::string_view alphabet, std::size_t length) {
  std::string out;
  for (std::size_t i = 0; i < length; ++i) out += alphabet[random() % alphabet.size()];
  return out;
}

TEST(AtomScannerTest, FindsEveryOccurrenceANaiveSearchFinds) {
  std::mt19937 random(7);
  const auto text = [&](std::size_t length) { return RandomText(random, "abc./", length); };
  // Every length from the short atoms found by their first byte to those
  // read through windows eight bytes apart, in subjects whose windows repeat.
  for (int round = 0; round < 60; ++round) {
    std::vector<std::string> atoms;
    for (int i = 0; i < 60; ++i) atoms.push_back(text(1 + random() % 24));
    const rex::AtomScanner scanner(atoms);
    for (int probe = 0; probe < 20; ++probe) {
      const std::string subject = Shout(text(random() % 120), random);
      ASSERT_EQ(Found(scanner, subject), NaiveSearch(atoms, subject)) << subject;
    }
  }
}

// Thousands of long atoms, filed as a real block list's are, beside shorter
// ones; subjects made of atoms at every alignment.
TEST(AtomScannerTest, LargeSetsFindEveryOccurrenceToo) {
  std::mt19937 random(11);
  const auto text = [&](std::size_t length) { return RandomText(random, "abcd./-", length); };
  std::vector<std::string> atoms;
  for (int i = 0; i < 4000; ++i) atoms.push_back(text(15 + random() % 10));
  for (int i = 0; i < 200; ++i) atoms.push_back(text(1 + random() % 14));
  const rex::AtomScanner scanner(atoms);
  for (int probe = 0; probe < 60; ++probe) {
    std::string subject = text(random() % 9);
    while (subject.size() < 160) subject += random() % 3 ? atoms[random() % atoms.size()] : text(random() % 5);
    subject = Shout(subject, random);
    ASSERT_EQ(Found(scanner, subject), NaiveSearch(atoms, subject)) << subject;
  }
}

TEST(HostOfPatternTest, ReadsTheHostOfTheShapeBlockListsAreMadeOf) {
  using Host = std::optional<std::string>;
  const std::pair<const char*, Host> cases[] = {
      {R"(^https?://([^/]*\.)?Paypa1\.example(:\d+)?(/|$))", "paypa1.example"},
      {R"(^https?://([^/]*\.)?stone-garden_2\.com(:\d+)?/wp-admin/login\.php)", "stone-garden_2.com"},
      {R"(^https://(?:[^/]+\.)*a\-b\.test(?::[0-9]+)?(?:[/?#\\]|$))", "a-b.test"},
      {R"(^http:\/\/[^/]*\.a\.test[/:])", "a.test"},
      {R"(^https?://a\.test:8080/)", "a.test"},
      {R"(^https?://a\.test($|\?))", "a.test"},
      // Whatever follows the part after the host, bar an alternative.
      {R"(^https?://a\.test/(?i)x.*\d)", "a.test"},
      // The part after the host could match a host byte, or nothing.
      {R"(^https?://([^/]*\.)?a\.test\b)", std::nullopt},
      {R"(^https?://([^/]*\.)?a\.test(/|$)?)", std::nullopt},
      {R"(^https?://([^/]*\.)?a\.test[/:]*)", std::nullopt},
      {R"(^https?://([^/]*\.)?a\.test(:\d+)?)", std::nullopt},
      {R"(^https?://([^/]*\.)?a\.test[^a]/)", std::nullopt},
      {R"(^https?://([^/]*\.)?a\.test[/.])", std::nullopt},
      {R"(^https?://([^/]*\.)?a\.tests?/)", std::nullopt},
      // The host is not plain text, or not where the URL's host is.
      {R"(^https?://([^/]*\.)?a.test/)", std::nullopt},
      {R"(^https?://([^/]*)?a\.test/)", std::nullopt},
      {R"(^https?://([^/]*\.)??a\.test/)", std::nullopt},
      {R"(^https?://(/|$))", std::nullopt},
      {R"(https?://a\.test/)", std::nullopt},
      {R"(^ftp://a\.test/)", std::nullopt},
      {R"(^https?://a\.test/|evil)", std::nullopt},
  };
  for (const auto& [pattern, host] : cases) EXPECT_EQ(rex::HostOfPattern(pattern, PCRE2_CASELESS), host) << pattern;
  // Options that change what "^", "#" or a letter means.
  EXPECT_EQ(rex::HostOfPattern("^https?://a\\.test/", PCRE2_MULTILINE), std::nullopt);
  EXPECT_EQ(rex::HostOfPattern("^https?://a\\.test/", PCRE2_EXTENDED), std::nullopt);
  EXPECT_EQ(rex::HostOfPattern("^https?://a\\.test/", PCRE2_CASELESS | PCRE2_UTF), std::nullopt);
}

TEST(HostIndexTest, ReportsTheHostsAUrlIsOnAndTheDomainsItLiesIn) {
  const rex::HostIndex index({{"example.com", 0},
                              {"b.example.com", 1},
                              {"ample.com", 2},
                              {"example.co", 3},
                              {"evil.net", 4},
                              {"example.com", 5}});
  const auto found = [&index](std::string_view url) {
    std::set<std::uint32_t> patterns;
    index.Find(url, [&patterns](std::uint32_t pattern) { patterns.insert(pattern); });
    return patterns;
  };
  using Set = std::set<std::uint32_t>;
  EXPECT_EQ(found("https://A.B.Example.COM:8080/x"), (Set{0, 1, 5}));
  EXPECT_EQ(found("HTTP://example.com"), (Set{0, 5}));
  EXPECT_EQ(found("http://example.com?x=a.evil.net\n"), (Set{0, 4, 5}));
  EXPECT_EQ(found("https://example.com.evil.net/"), (Set{4}));
  // Not at the start of the host or after a dot; after the first "/"; not
  // a web address.
  EXPECT_EQ(found("https://xexample.com/"), Set{});
  EXPECT_EQ(found("https://user@example.com/"), Set{});
  EXPECT_EQ(found("https://www.google.com/url?q=https%3A%2F%2Fexample.com%2F"), Set{});
  EXPECT_EQ(found("ftp://example.com/"), Set{});
  EXPECT_EQ(found("https:/"), Set{});
}

class PatternSetTest : public ComponentTest {
 protected:
  std::unique_ptr<ComponentObject> CreateDebugging() {
    EnableDebugLog();  // before the object reads the Debug setting
    return Create(Install(kBuiltRex), kRexProgId);
  }
  std::unique_ptr<ComponentObject> object = CreateDebugging();
  Rex rex{*object};
  PatternBudget unlimited{process.log, 600000};

  std::optional<std::int32_t> Ask(std::string_view name, std::string_view subject, std::string_view tag,
                                  std::chrono::microseconds time) {
    return rex.FirstMatch(name, subject, tag, time);
  }
};

// Patterns and URLs made from the same pieces, so that many URLs match some
// pattern, often a later one than the first that shares an atom.
struct Generated {
  std::vector<std::string> patterns;
  std::vector<std::string> urls;
};

Generated Generate(unsigned seed) {
  static const char* const kWords[] = {"paypa1",
                                       "Secure",
                                       "login",
                                       "bank",
                                       "example",
                                       "a",
                                       "xn--app1e",
                                       "wp-admin",
                                       "account-verify-7",
                                       "signin-Update.example.com",
                                       "secure-bank-login.example"};
  static const char* const kPieces[] = {
      "\\.",      ".",         "[^/]*", "(?:www\\.)?", "(a|b)",          "https?://", "^",       "$",
      "\\d+",     "(?i)",      "(?-i)", "\\Qa.b\\E",   "x{2,3}",         "(?=ban)",   "(?!ban)", "(?<=/)",
      "\\bwp\\b", "(\\w+)\\1", "[A-Z]", "\\x41",       "\\101",          "(?:ab)*",   "a?",      "b+?",
      "c*+",      "{",         "{a}",   "\\n",         "(?<n>ab)\\k<n>", "/",         "-",       "(?:log|sign)in",
      "\\s*",     "\\s",       "\\s+?", "[ ]{0,3}"};
  std::mt19937 random(seed);
  const auto pick = [&](const auto& table) { return std::string(table[random() % std::size(table)]); };
  Generated out;
  for (int i = 0; i < 250; ++i) {
    std::string pattern;
    for (auto parts = 1 + random() % 5; parts > 0; --parts) pattern += random() % 2 ? pick(kWords) : pick(kPieces);
    out.patterns.push_back(pattern);
  }
  for (int i = 0; i < 600; ++i) {
    std::string url = random() % 4 ? "https://" : "HTTP://";
    for (auto parts = 1 + random() % 6; parts > 0; --parts) {
      std::string word = pick(kWords);
      if (random() % 4 == 0) word[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(word[0])));
      url += word + std::string(1, "./-?=A1"[random() % 7]);
    }
    out.urls.push_back(url);
  }
  return out;
}

// Lines a block list or a hostile server may hold: broken, runaway,
// empty, and constructs the atom reader gives up on.
const std::vector<std::string> kHostile = {
    "(abc",        "[a-",        "a{2,1}",     "\\",           "",
    "(*UTF)(?i)k", "(?x) a b c", "(?#c)login", "a(?#c)*login", "[[:alpha:]]+login",
    "[]a]x",       "[^]a]xa",    "\\Qa|b\\E",  "(?|(a)|(b))c", "(a+)+$",
    "(x+x+)+[yz]", "(?i)SECURE", "^$",         "\\Aa",         "(?s).+bank",
    "ba(?=n)nk",   "b\\x{61}nk", "(?:)",       "\\d{8,10}"};

TEST_F(PatternSetTest, ASetAnswersWhatThePatternsOneByOneAnswer) {
  std::size_t matched = 0;
  for (const char* flags : {"i", "", "si"}) {
    for (unsigned seed = 1; seed <= 3; ++seed) {
      Generated generated = Generate(seed);
      std::vector<std::string> patterns = kHostile;
      patterns.insert(patterns.begin() + seed, generated.patterns.begin(), generated.patterns.end());
      generated.urls.push_back("http://x.example/?q=" + std::string(40, 'a') + "!");
      generated.urls.push_back("http://x.example/?q=" + std::string(40, 'x'));
      PatternList list("differential", flags);
      list.Set(patterns);
      for (const auto& url : generated.urls) {
        const std::int32_t byOne = list.FirstMatchOneByOne(rex, url, unlimited);
        ASSERT_EQ(list.FirstMatch(rex, url, unlimited), byOne) << "flags " << flags << ", " << url;
        matched += byOne >= 0;
      }
    }
  }
  EXPECT_GT(matched, 1000u);  // the comparison is not one of misses only
}

// Hosts that share labels and endings, in the shapes block lists are made
// of, asked with URLs that put them everywhere a host can and cannot be.
TEST_F(PatternSetTest, PatternsFiledByHostAnswerAsTheyDoOneByOne) {
  const std::vector<std::string> hosts = {"example.com", "a.example.com",     "xample.com",
                                          "example.co",  "Login-Example.com", "192.0.2.7"};
  const std::vector<std::string> shapes = {R"(^https?://([^/]*\.)?HOST(:\d+)?(/|$))",
                                           R"(^https?://([^/]*\.)?HOST(:\d+)?/wp-admin/)", R"(^https://HOST[/:?#])",
                                           R"(^http:\/\/(?:[^/]+\.)*HOST($|\?))"};
  std::vector<std::string> patterns;
  for (const auto& shape : shapes) {
    for (const auto& host : hosts) {
      std::string escaped;
      for (const char c : host) escaped += c == '.' ? std::string("\\.") : std::string(1, c);
      patterns.push_back(shape.substr(0, shape.find("HOST")) + escaped + shape.substr(shape.find("HOST") + 4));
    }
  }
  std::vector<std::string> urls;
  for (const auto& host : hosts) {
    std::string shouted = host;
    for (char& c : shouted) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    for (const std::string& url :
         {"http://" + host + "/", "HTTPS://" + shouted + ":8080/wp-admin/x", "https://w." + host + "?q=1",
          "https://x" + host + "/", "https://" + host + ".evil.net/", "https://user@" + host + "/",
          "https://user:pw@a." + host + "/wp-admin/", "http://" + host + "\n", "http://" + host + "#top",
          "https://www.google.com/url?q=https://" + host + "/", "https://" + host + "./", "https://" + host + ":/",
          "http://a." + host + "?next=/wp-admin/", "https://" + host}) {
      urls.push_back(url);
    }
  }
  std::size_t matched = 0;
  for (const char* flags : {"i", ""}) {
    PatternList list("hosts", flags);
    list.Set(patterns);
    for (const auto& url : urls) {
      const std::int32_t byOne = list.FirstMatchOneByOne(rex, url, unlimited);
      ASSERT_EQ(list.FirstMatch(rex, url, unlimited), byOne) << "flags " << flags << ", " << url;
      matched += byOne >= 0;
    }
  }
  EXPECT_GT(matched, 60u);
}

// The atoms read past optional white space must count every character
// PCRE2 takes as white space, and only those.
TEST_F(PatternSetTest, WhiteSpaceIsWhatPcreTakesForIt) {
  PatternList list("space", "i");
  list.Set({R"(ka\s*yb)", R"(kc\sd)", R"(ke\s?fg)"});
  for (int byte = 1; byte < 256; ++byte) {
    const std::string c(1, static_cast<char>(byte));
    for (const std::string& url : {"http://x.test/?q=ka" + c + "yb", "http://x.test/?q=ka" + c + c + "yb",
                                   "http://x.test/?q=kc" + c + "d", "http://x.test/?q=ke" + c + "fg"}) {
      ASSERT_EQ(list.FirstMatch(rex, url, unlimited), list.FirstMatchOneByOne(rex, url, unlimited)) << byte;
    }
  }
}

TEST_F(PatternSetTest, SetsAreKeptByNameAndTag) {
  EXPECT_TRUE(rex.CompileSet("local", {"", "(abc", "b[a]nk", "x*"}, "i", "v1"));
  EXPECT_EQ(Ask("local", "http://BANK.example/", "v1", std::chrono::seconds(1)), 2);
  EXPECT_EQ(Ask("local", "http://BANK.example/", "v2", std::chrono::seconds(1)), kSetUnknown);
  EXPECT_EQ(Ask("other", "http://BANK.example/", "v1", std::chrono::seconds(1)), kSetUnknown);
  EXPECT_EQ(rex.SetInfo("local"), (std::vector<std::string>{"4", "2", rex.SetInfo("local")->at(2)}));
  EXPECT_EQ(rex.SetInfo("other"), std::nullopt);

  // A broken line says so each time it is reached, as Test does.
  const auto before = ComponentLog().size();
  EXPECT_EQ(Ask("local", "nothing here", "v1", std::chrono::seconds(1)), 3);
  const auto log = ComponentLog();
  ASSERT_EQ(log.size(), before + 1);
  EXPECT_EQ(log.back(), "(debug) (Rex) Pattern does not compile (missing closing parenthesis at offset 4): (abc");

  EXPECT_TRUE(rex.CompileSet("local", {"nothing"}, "", "v2"));
  EXPECT_EQ(Ask("local", "nothing here", "v2", std::chrono::seconds(1)), 0);
  EXPECT_EQ(Ask("local", "nothing here", "v1", std::chrono::seconds(1)), kSetUnknown);
}

TEST_F(PatternSetTest, TheTimeGivenBoundsTheRunawayPatterns) {
  // Each of these runs into the match limit, which takes milliseconds;
  // the last line would match.
  std::vector<std::string> patterns(400, "(x+x+)+[yz]");
  patterns.push_back("x");
  const std::string subject = "http://x.example/?q=" + std::string(30, 'x');
  EXPECT_TRUE(rex.CompileSet("runaway", patterns, "", ""));
  std::chrono::microseconds time = std::chrono::milliseconds(20);
  EXPECT_EQ(rex.FirstMatch("runaway", subject, "", time), kSetOutOfTime);
  EXPECT_EQ(time.count(), 0);  // it comes back spent
  EXPECT_EQ(Ask("runaway", subject, "", std::chrono::microseconds(0)), kSetOutOfTime);
  // Where the scan shows no pattern can match, the answer is certain even
  // without time, and the time comes back untouched.
  time = std::chrono::microseconds(0);
  EXPECT_EQ(rex.FirstMatch("runaway", "http://a.test/", "", time), kSetNoMatch);
  time = std::chrono::milliseconds(20);
  EXPECT_EQ(rex.FirstMatch("runaway", "http://a.test/", "", time), kSetNoMatch);
  EXPECT_EQ(time, std::chrono::milliseconds(20));

  // A list of them draws on a check's time as the patterns run: what one
  // question spent, the next does not get.
  PatternList list("runaway", "");
  list.Set(patterns);
  list.Prepare(rex);
  PatternBudget budget(process.log, 20);
  EXPECT_EQ(list.FirstMatch(rex, subject, budget), kSetOutOfTime);
  EXPECT_TRUE(budget.Exhausted());
  EXPECT_EQ(list.FirstMatch(rex, "http://x.example/?q=x", budget), kSetOutOfTime);
}

// Tarnwick.Rex as a release before pattern sets answers: the list is then
// tried one pattern at a time, with the same answers.
class WithoutSets final : public ComponentObject {
 public:
  explicit WithoutSets(ComponentObject& inner) : inner_(inner) {}
  long Invoke(std::string_view member, std::span<Variant> args, Variant& result, std::string& error) override {
    if (member == "CompileSet" || member == "FirstMatch") return kErrMemberNotFound;
    return inner_.Invoke(member, args, result, error);
  }

 private:
  ComponentObject& inner_;
};

TEST_F(PatternSetTest, AComponentWithoutSetsGetsThePatternsOneByOne) {
  WithoutSets old(*object);
  Rex oldRex(old);
  PatternList list("local", "i");
  list.Set({"", "bank\\.example", "example"});
  list.Prepare(oldRex);
  EXPECT_EQ(list.FirstMatch(oldRex, "http://www.BANK.example/", unlimited), 1);
  EXPECT_EQ(list.FirstMatch(oldRex, "http://other.test/", unlimited), kSetNoMatch);
  PatternBudget none(process.log, 1);
  none.Spend([] {
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
    return 0;
  });
  EXPECT_EQ(list.FirstMatch(oldRex, "http://www.BANK.example/", none), kSetOutOfTime);
}

}  // namespace
}  // namespace tarnwick::testing

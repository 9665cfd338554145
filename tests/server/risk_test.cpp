// The risk rating's configuration and model.
#include <gtest/gtest.h>

#include <fstream>

#include "common/TestSupport.h"
#include "server/RiskModel.h"

namespace tarnwick::server {
namespace {

RiskModel Model(const std::string& config, const std::string& popular = {}) {
  std::string error;
  auto parsed = ParseRiskConfig(config, ".", error);
  EXPECT_TRUE(parsed) << error;
  return RiskModel(parsed.value_or(RiskConfig{}), PopularityList::Parse(popular));
}

// Only the weight under test is non-zero.
constexpr const char* kSilent =
    "base = 0\nknown_phishing = 0\nlisted_pages = 0\nnumeric_host = 0\npunycode = 0\nmany_labels = 0\n"
    "many_hyphens = 0\nbrand_word = 0\nnever_seen = 0\nshared_address = 0\npopular = 0\npopular_top = 0\n";

int RankWith(const std::string& weight, std::string_view host, const std::string& extra = {},
             const std::string& popular = {}) {
  return Model(std::string(kSilent) + weight + "\n" + extra, popular).Rank({host});
}

TEST(RiskModel, EachFactAddsItsWeight) {
  EXPECT_EQ(RankWith("numeric_host = 3", "203.0.113.5"), 3);
  EXPECT_EQ(RankWith("numeric_host = 3", "3405803781"), 3);
  EXPECT_EQ(RankWith("numeric_host = 3", "[2001:db8::1]"), 3);
  EXPECT_EQ(RankWith("numeric_host = 3", "a1.example"), 0);
  EXPECT_EQ(RankWith("punycode = 2", "www.xn--pypal-4ve.example"), 2);
  EXPECT_EQ(RankWith("many_labels = 1\nmax_labels = 3", "a.b.example.com"), 1);
  EXPECT_EQ(RankWith("many_labels = 1\nmax_labels = 3", "b.example.com"), 0);
  EXPECT_EQ(RankWith("many_hyphens = 1\nmax_hyphens = 1", "a-b-c.example"), 1);
  EXPECT_EQ(RankWith("many_hyphens = 1\nmax_hyphens = 1", "a-b.example"), 0);
}

TEST(RiskModel, BrandWordsCountOnlyOffTheBrandsOwnDomains) {
  const std::string brand = "brand paypal = paypal.com paypal.me";
  EXPECT_EQ(RankWith("brand_word = 3", "paypal.com.secure.example", brand), 3);
  EXPECT_EQ(RankWith("brand_word = 3", "www.paypal.com", brand), 0);
  EXPECT_EQ(RankWith("brand_word = 3", "paypal.me", brand), 0);
  EXPECT_EQ(RankWith("brand_word = 3", "notpaypal.me.example", brand), 3);
}

TEST(RiskModel, PopularityLowersTheRankButNotForSharedHostingCustomers) {
  const std::string weights = "base = 5\npopular = -2\npopular_top = -4\npopular_top_rank = 10";
  const std::string hosting = "shared_hosting = pages.example";
  const std::string list = "3,big.example\n500,small.example\n4,pages.example\n";
  EXPECT_EQ(RankWith(weights, "www.big.example", hosting, list), 1);
  EXPECT_EQ(RankWith(weights, "small.example", hosting, list), 3);
  EXPECT_EQ(RankWith(weights, "pages.example", hosting, list), 1);
  EXPECT_EQ(RankWith(weights, "victim.pages.example", hosting, list), 5);
  EXPECT_EQ(RankWith(weights, "unlisted.example", hosting, list), 5);
  // One domain per line ranks by line number.
  EXPECT_EQ(RankWith(weights, "second.example", hosting, "first.example\nsecond.example\n"), 1);
}

TEST(RiskModel, SiteFactsAddTheirWeightsAndTheSumIsClamped) {
  const RiskModel model =
      Model(std::string(kSilent) + "known_phishing = 10\nlisted_pages = 4\nnever_seen = 1\nshared_address = 2\n");
  EXPECT_EQ(model.Rank({"a.example", false, true, false, 1}), 7);
  EXPECT_EQ(model.Rank({"a.example", true, true, false, 1}), 10);
  EXPECT_EQ(Model("base = -3").Rank({"a.example"}), 0);
}

TEST(RiskConfig, WrongLinesAreRefusedWithTheirLineNumber) {
  std::string error;
  EXPECT_FALSE(ParseRiskConfig("base = 1\n\nbogus = 2\n", ".", error));
  EXPECT_EQ(error, "line 3: unknown key 'bogus'");
  EXPECT_FALSE(ParseRiskConfig("# weights\nbase = high\n", ".", error));
  EXPECT_EQ(error, "line 2: base needs a whole number, not 'high'");
  EXPECT_FALSE(ParseRiskConfig("brand paypal =\n", ".", error));
  EXPECT_EQ(error, "line 1: a brand line reads: brand WORD = DOMAIN...");
  EXPECT_FALSE(ParseRiskConfig("base\n", ".", error));
  EXPECT_EQ(error, "line 1: expected key = value");
}

TEST(RiskConfig, MissingFileMeansDefaultsAndTheListIsFoundBesideTheFile) {
  tarnwick::testing::TempDir dir;
  std::string error;
  const auto defaults = ReadRiskConfig(dir / "none.conf", error);
  ASSERT_TRUE(defaults);
  EXPECT_EQ(defaults->weights.knownPhishing, 10);
  EXPECT_TRUE(defaults->popularityList.empty());

  std::filesystem::create_directories(dir / "server");
  std::ofstream(dir / "server" / "risk.conf") << "popularity_list = top.csv  # beside this file\n";
  const auto config = ReadRiskConfig(dir / "server" / "risk.conf", error);
  ASSERT_TRUE(config) << error;
  EXPECT_EQ(config->popularityList, dir / "server" / "top.csv");
}

}  // namespace
}  // namespace tarnwick::server

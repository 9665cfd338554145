// The risk rating's configuration: one weight per fact about a site, the
// brands whose names look-alike hosts borrow, and the popularity list. Read
// from a text file of "key = value" lines ("#" starts a comment):
//
//   base = 1                 every site starts here
//   known_phishing = 10      a feed lists the whole site
//   listed_pages = 4         a feed lists pages below the site's root
//   numeric_host = 3         the host is an address literal
//   punycode = 2             a label of the host starts "xn--"
//   many_labels = 1          the host has more than max_labels labels
//   max_labels = 4
//   many_hyphens = 1         the host has more than max_hyphens hyphens
//   max_hyphens = 2
//   brand_word = 3           the host holds a brand word but is not the brand's
//   never_seen = 1           nobody asked about the host before
//   shared_address = 2       known phishing hosts are served from the same address
//   popular = -2             the host (or its domain) is in the popularity list
//   popular_top = -4         ... at a rank up to popular_top_rank (instead of "popular")
//   popular_top_rank = 10000
//   popularity_list = popular.csv           relative to the configuration file
//   shared_hosting = weebly.com 000webhostapp.com   their subdomains inherit no popularity
//   brand paypal = paypal.com paypal.me     a brand word and the brand's own domains
//
// The rank is the sum, clamped to 0..10. Keys left out keep these defaults.
#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::server {

struct RiskWeights {
  int base = 1;
  int knownPhishing = 10;
  int listedPages = 4;
  int numericHost = 3;
  int punycode = 2;
  int manyLabels = 1;
  int maxLabels = 4;
  int manyHyphens = 1;
  int maxHyphens = 2;
  int brandWord = 3;
  int neverSeen = 1;
  int sharedAddress = 2;
  int popular = -2;
  int popularTop = -4;
  int popularTopRank = 10000;
};

struct Brand {
  std::string word;
  std::vector<std::string> domains;
};

struct RiskConfig {
  RiskWeights weights;
  std::vector<Brand> brands;
  std::vector<std::string> sharedHosting;
  std::filesystem::path popularityList;  // empty: none
};

// Parses the configuration text; `folder` anchors a relative popularity
// list. Nothing, with "line N: why" in `error`, when a line is wrong.
std::optional<RiskConfig> ParseRiskConfig(std::string_view text, const std::filesystem::path& folder,
                                          std::string& error);

// The configuration file, or the defaults when there is no such file.
std::optional<RiskConfig> ReadRiskConfig(const std::filesystem::path& file, std::string& error);

// The configuration key of each weight, in the order of the file above.
struct WeightKey {
  std::string_view key;
  int RiskWeights::*field;
};
inline constexpr std::array<WeightKey, 15> kWeightKeys = {{
    {"base", &RiskWeights::base},
    {"known_phishing", &RiskWeights::knownPhishing},
    {"listed_pages", &RiskWeights::listedPages},
    {"numeric_host", &RiskWeights::numericHost},
    {"punycode", &RiskWeights::punycode},
    {"many_labels", &RiskWeights::manyLabels},
    {"max_labels", &RiskWeights::maxLabels},
    {"many_hyphens", &RiskWeights::manyHyphens},
    {"max_hyphens", &RiskWeights::maxHyphens},
    {"brand_word", &RiskWeights::brandWord},
    {"never_seen", &RiskWeights::neverSeen},
    {"shared_address", &RiskWeights::sharedAddress},
    {"popular", &RiskWeights::popular},
    {"popular_top", &RiskWeights::popularTop},
    {"popular_top_rank", &RiskWeights::popularTopRank},
}};

}  // namespace tarnwick::server

// The site information strip as the host draws it: the toolbar server's text
// cut into plain words, links and the hosting country's flag, and the figure
// for the red risk bar. The server writes its text as
//   Risk rating: 3/10 <a href="...">What is this?</a> | Hosted in [US] United States
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "support/ComponentObject.h"

namespace tarnwick {

struct StripRun {
  enum class Kind { Text, Link, Country };
  Kind kind = Kind::Text;
  std::string text;    // the words shown; for a country, its name (the flag's tooltip)
  std::string target;  // a link's address; a country's two-letter code
};

struct SiteInformation {
  std::string text;  // as the check engine left it
  std::vector<StripRun> runs;
  // 0 to 10 for the red risk bar; -1 when the site has no known rating.
  std::int16_t riskRank = -1;
  // Where the risk bar leads: the rating's explanation on the web site.
  std::string riskLink;
  // The first country the text names: "US", "United States"; empty for none.
  std::string countryCode;
  std::string countryName;
};

// Reads the strip's text with two regular-expression objects of its own, each
// prepared once for its pattern: one for the links, one for the countries.
class SiteInformationReader {
 public:
  SiteInformationReader(std::shared_ptr<ComponentObject> linkRex, std::shared_ptr<ComponentObject> countryRex);

  // `currentRiskRank` gives the bar when the text names no rating; `site` is
  // the web site's base address.
  SiteInformation Read(std::string_view text, std::int16_t currentRiskRank, std::string_view site);

 private:
  void AddPlainText(std::string_view text, SiteInformation& information);

  std::shared_ptr<ComponentObject> linkRex_;
  std::shared_ptr<ComponentObject> countryRex_;
};

}  // namespace tarnwick

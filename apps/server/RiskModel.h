// The site's risk rating, 0 (no known risk) to 10 (known phishing), as the
// X-Risk-Rank header carries it: the configured weights of the facts that
// hold for the site, summed and clamped (see RiskConfig.h for the model).
#pragma once

#include <cstddef>
#include <string_view>

#include "server/PopularityList.h"
#include "server/RiskConfig.h"

namespace tarnwick::server {

// What the server knows about the site asked for, beyond its name.
struct SiteFacts {
  std::string_view host;
  bool wholeSiteListed = false;
  bool pagesListed = false;
  bool seenBefore = true;
  std::size_t phishingNeighbours = 0;  // other phishing hosts at the same address
};

class RiskModel {
 public:
  RiskModel(RiskConfig config, PopularityList popularity)
      : config_(std::move(config)), popularity_(std::move(popularity)) {}

  int Rank(const SiteFacts& facts) const;
  const RiskConfig& config() const { return config_; }

 private:
  bool BorrowsBrand(std::string_view host) const;

  RiskConfig config_;
  PopularityList popularity_;
};

}  // namespace tarnwick::server

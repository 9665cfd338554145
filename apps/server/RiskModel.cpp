#include "server/RiskModel.h"

#include <algorithm>

#include "server/HostNames.h"

namespace tarnwick::server {
namespace {

bool IsDomainOrBelow(std::string_view host, std::string_view domain) {
  return host == domain ||
         (host.size() > domain.size() && host.ends_with(domain) && host[host.size() - domain.size() - 1] == '.');
}

}  // namespace

bool RiskModel::BorrowsBrand(std::string_view host) const {
  for (const Brand& brand : config_.brands) {
    if (host.find(brand.word) == std::string_view::npos) continue;
    const bool own = std::any_of(brand.domains.begin(), brand.domains.end(),
                                 [&](const std::string& domain) { return IsDomainOrBelow(host, domain); });
    if (!own) return true;
  }
  return false;
}

int RiskModel::Rank(const SiteFacts& facts) const {
  const RiskWeights& w = config_.weights;
  const std::string_view host = facts.host;
  int rank = w.base;
  if (facts.wholeSiteListed) rank += w.knownPhishing;
  if (facts.pagesListed) rank += w.listedPages;
  if (IsNumericHost(host)) rank += w.numericHost;
  if (host.starts_with("xn--") || host.find(".xn--") != std::string_view::npos) rank += w.punycode;
  if (std::count(host.begin(), host.end(), '.') + 1 > w.maxLabels) rank += w.manyLabels;
  if (std::count(host.begin(), host.end(), '-') > w.maxHyphens) rank += w.manyHyphens;
  if (BorrowsBrand(host)) rank += w.brandWord;
  if (!facts.seenBefore) rank += w.neverSeen;
  if (facts.phishingNeighbours > 0) rank += w.sharedAddress;
  if (const std::uint32_t popularity = popularity_.RankOf(host, config_.sharedHosting); popularity != 0) {
    rank += popularity <= static_cast<std::uint32_t>(std::max(w.popularTopRank, 0)) ? w.popularTop : w.popular;
  }
  return std::clamp(rank, 0, 10);
}

}  // namespace tarnwick::server

#include "server/Verdicts.h"

#include "server/HostNames.h"
#include "server/Html.h"

namespace tarnwick::server {
namespace {

std::string SiteInformation(bool blocked, bool pagesListed, int rank, Country country, std::string_view site) {
  const std::string base = HtmlEscape(site);
  std::string text = blocked ? "Known phishing site! " : "";
  text += "Risk rating: " + std::to_string(rank) + "/10 <a href=\"" + base +
          "/help/faq/index.html#riskrating\">What is this?</a>";
  if (pagesListed) text += " | Some pages of this site are known phishing pages";
  if (!country.code.empty()) {
    text += " | Hosted in [" + std::string(country.code) + "] " + HtmlEscape(country.name);
  }
  if (blocked) text += " | <a href=\"" + base + "/report_mistake\">Report a mistake</a>";
  return text;
}

}  // namespace

HttpResponse Verdicts::Answer(const CheckUrlQuestion& question, std::string_view site, std::string_view client) const {
  const std::shared_ptr<const PhishIndex> index = index_.Current();
  const PhishIndex::Site* listed = index->Find(question.host);

  SiteFacts facts{question.host};
  facts.wholeSiteListed = listed != nullptr && listed->wholeSite;
  facts.pagesListed = listed != nullptr && !listed->patterns.empty();
  facts.seenBefore = observations_.NoteHost(question.host);
  Country country;
  if (question.address && !IsPrivateAddress(*question.address)) {
    if (listed != nullptr) observations_.NotePhishingAddress(*question.address, question.host, client);
    facts.phishingNeighbours = observations_.OtherPhishingHostsAt(*question.address, question.host, *index);
    country = geoIp_.CountryOf(*question.address);
  }
  const int rank = risk_.Rank(facts);

  HttpResponse response;
  response.status = facts.wholeSiteListed ? 403 : 200;
  response.body = SiteInformation(facts.wholeSiteListed, facts.pagesListed, rank, country, site);
  response.headers.emplace_back("X-Risk-Rank", std::to_string(rank));
  if (facts.pagesListed && !facts.wholeSiteListed) {
    response.headers.emplace_back("X-Phishing-Patterns", listed->patterns);
  }
  return response;
}

}  // namespace tarnwick::server

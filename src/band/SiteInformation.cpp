#include "band/SiteInformation.h"

#include <algorithm>

#include "check/Rex.h"
#include "support/Text.h"

namespace tarnwick {
namespace {

constexpr std::string_view kLinkPattern = R"((.*?)<a\s+href\s*=\s*["']([^"']*)["']>([^<]*)<\/a>([^<]*))";
constexpr std::string_view kCountryPattern = R"((.*?)(\[[A-Z]{2}\])([^\[]*))";
constexpr std::string_view kRatingPattern = R"(Risk rating:\s*(10|\d)\s*/\s*10\b)";

// The server escapes what it reflects; the strip shows the characters.
std::string Unescape(std::string_view html) {
  static constexpr std::pair<std::string_view, char> kEntities[] = {
      {"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&#39;", '\''}};
  std::string text;
  for (std::size_t i = 0; i < html.size();) {
    const auto entity = std::find_if(std::begin(kEntities), std::end(kEntities),
                                     [&](const auto& e) { return html.substr(i).starts_with(e.first); });
    if (entity != std::end(kEntities)) {
      text += entity->second;
      i += entity->first.size();
    } else {
      text += html[i++];
    }
  }
  return text;
}

void AddText(std::string_view text, SiteInformation& information) {
  if (!text.empty()) information.runs.push_back({StripRun::Kind::Text, Unescape(text), {}});
}

std::string_view Trim(std::string_view text) {
  const auto first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

}  // namespace

SiteInformationReader::SiteInformationReader(std::shared_ptr<ComponentObject> linkRex,
                                             std::shared_ptr<ComponentObject> countryRex)
    : linkRex_(std::move(linkRex)), countryRex_(std::move(countryRex)) {
  if (linkRex_) Rex(*linkRex_).Prepare(kLinkPattern, "ig");
  if (countryRex_) Rex(*countryRex_).Prepare(kCountryPattern, "ig");
}

SiteInformation SiteInformationReader::Read(std::string_view text, std::int16_t currentRiskRank,
                                            std::string_view site) {
  SiteInformation information;
  information.text = std::string(text);
  information.riskRank = currentRiskRank >= 0 ? std::min<std::int16_t>(currentRiskRank, 10) : -1;
  information.riskLink = std::string(site) + "/help/faq/index.html#riskrating";
  if (!linkRex_) {
    AddText(text, information);
    return information;
  }
  Rex links(*linkRex_);
  if (const auto rating = links.Match(text, kRatingPattern, "i")) {
    information.riskRank = static_cast<std::int16_t>(std::stoi((*rating)[0]));
  }
  if (const auto groups = links.Match(text, kLinkPattern, "ig")) {
    for (std::size_t i = 0; i + 3 < groups->size(); i += 4) {
      AddPlainText((*groups)[i], information);
      information.runs.push_back({StripRun::Kind::Link, Unescape((*groups)[i + 2]), Unescape((*groups)[i + 1])});
      AddPlainText((*groups)[i + 3], information);
    }
  }
  // What no link match took: all of a text without links, or a tail that
  // holds a tag the strip does not draw.
  AddPlainText(links.Replace(text, kLinkPattern, "", "ig"), information);
  return information;
}

void SiteInformationReader::AddPlainText(std::string_view text, SiteInformation& information) {
  if (!countryRex_) {
    AddText(text, information);
    return;
  }
  Rex countries(*countryRex_);
  const auto groups = countries.Match(text, kCountryPattern, "ig");
  if (!groups) {
    AddText(text, information);
    return;
  }
  for (std::size_t i = 0; i + 2 < groups->size(); i += 3) {
    AddText((*groups)[i], information);
    const std::string code = UpperAscii((*groups)[i + 1].substr(1, 2));
    // The name runs up to the next separator of the server's text.
    const std::string_view rest = (*groups)[i + 2];
    const std::string_view name = Trim(rest.substr(0, rest.find('|')));
    information.runs.push_back({StripRun::Kind::Country, Unescape(name), code});
    if (information.countryCode.empty()) {
      information.countryCode = code;
      information.countryName = Unescape(name);
    }
    const auto nameEnd = name.empty() ? 0 : static_cast<std::size_t>(name.data() + name.size() - rest.data());
    AddText(rest.substr(nameEnd), information);
  }
  AddText(countries.Replace(text, kCountryPattern, "", "ig"), information);
}

}  // namespace tarnwick

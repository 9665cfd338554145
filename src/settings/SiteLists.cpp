#include "settings/SiteLists.h"

#include <algorithm>
#include <optional>

#include "settings/SettingValue.h"
#include "settings/mdlRegistry.h"
#include "support/Hex.h"
#include "support/IPv4Address.h"
#include "support/Text.h"

namespace tarnwick {
namespace {

constexpr std::string_view kSeparators = "; \t";

// A host names an address in any numeric form by that address, "a.b.c.d".
std::optional<std::string> AddressOf(std::string_view host) {
  const auto address = ParseIPv4Address(host);
  if (!address) return std::nullopt;
  return DottedAddress(*address);
}

// The entry as the list means it: lower case, without "*.", an address in
// dotted form.
std::string NormalEntry(std::string_view written) {
  std::string entry = LowerAscii(written);
  if (entry.starts_with("*.")) entry.erase(0, 2);
  if (const auto address = AddressOf(entry)) entry = *address;
  return entry;
}

bool EntryCovers(std::string_view written, std::string_view site) {
  const std::string entry = NormalEntry(written);
  if (entry.empty()) return false;
  if (site == entry) return true;
  return !AddressOf(site) && site.size() > entry.size() && site.ends_with("." + entry);
}

bool IsHostName(std::string_view entry) {
  if (entry.starts_with("*.")) entry.remove_prefix(2);
  return !entry.empty() && std::all_of(entry.begin(), entry.end(), [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_' ||
           c == '.';
  });
}

void WriteList(SettingsStore& store, const std::vector<std::string>& sites) {
  std::string text;
  for (const auto& site : sites) text += (text.empty() ? "" : "; ") + site;
  mdlRegistry::SaveSetting(store, mdlRegistry::kSettingsKey, kTrustedSites, text, kRegSz);
}

}  // namespace

std::string SiteOfURL(std::string_view url) {
  const auto schemeEnd = url.find("://");
  if (schemeEnd == std::string_view::npos) return {};
  std::string_view rest = url.substr(schemeEnd + 3);
  rest = rest.substr(0, rest.find_first_of("/?#"));
  if (const auto at = rest.rfind('@'); at != std::string_view::npos) rest = rest.substr(at + 1);
  if (rest.starts_with("[")) return LowerAscii(rest.substr(0, rest.find(']') + 1));
  std::string host = LowerAscii(PercentDecode(rest.substr(0, rest.find(':'))));
  if (const auto address = AddressOf(host)) return *address;
  return host;
}

std::vector<std::string> SiteListEntries(std::string_view list) {
  std::vector<std::string> entries;
  std::size_t start = 0;
  while (start < list.size()) {
    const auto end = std::min(list.find_first_of(kSeparators, start), list.size());
    if (end > start) entries.emplace_back(list.substr(start, end - start));
    start = end + 1;
  }
  return entries;
}

bool SiteListCovers(std::string_view list, std::string_view site) {
  const auto entries = SiteListEntries(list);
  return std::any_of(entries.begin(), entries.end(), [site](const std::string& e) { return EntryCovers(e, site); });
}

std::vector<std::string> TrustedSites(SettingsStore& store) {
  return SiteListEntries(
      ToText(mdlRegistry::GetSetting(store, mdlRegistry::kSettingsKey, kTrustedSites, std::string())));
}

bool SetTrustedSites(SettingsStore& store, const std::vector<std::string>& sites, std::string& error) {
  for (const auto& site : sites) {
    if (!IsHostName(site)) {
      error = "\"" + site + "\" is not a host name";
      return false;
    }
  }
  WriteList(store, sites);
  return true;
}

bool TrustSite(SettingsStore& store, std::string_view url) {
  const std::string site = SiteOfURL(url);
  if (site.empty() || !IsHostName(site)) return false;
  std::vector<std::string> sites = TrustedSites(store);
  if (std::any_of(sites.begin(), sites.end(), [&](const std::string& e) { return EntryCovers(e, site); })) return true;
  sites.push_back(site);
  WriteList(store, sites);
  return true;
}

bool DistrustSite(SettingsStore& store, std::string_view url) {
  const std::string site = SiteOfURL(url);
  std::vector<std::string> sites = TrustedSites(store);
  const auto kept = std::remove_if(sites.begin(), sites.end(),
                                   [&](const std::string& e) { return !site.empty() && EntryCovers(e, site); });
  if (kept == sites.end()) return false;
  sites.erase(kept, sites.end());
  WriteList(store, sites);
  return true;
}

}  // namespace tarnwick

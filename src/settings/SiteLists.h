// The zone lists (TrustedSites, IntranetSites, RestrictedSites settings):
// host names separated by semicolons or blanks. An entry names a host and
// every host below it ("example.com" covers "www.example.com"); a leading
// "*." is allowed and means the same. An address entry, in any of its
// numeric forms, names that address alone. The retrieval component's zone
// map reads them; the person edits the trusted list (a site there is not
// checked).
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "settings/SettingsStore.h"

namespace tarnwick {

inline constexpr std::string_view kTrustedSites = "TrustedSites";

// The host of "scheme://[user@]host[:port]/...", escapes decoded and
// lower-cased, a numeric host written as its dotted address; empty when the
// URL has no authority.
std::string SiteOfURL(std::string_view url);
// Whether an entry of `list` covers `site` (as SiteOfURL gives it).
bool SiteListCovers(std::string_view list, std::string_view site);
// The entries of a list as written, without the separators.
std::vector<std::string> SiteListEntries(std::string_view list);

// The person's trusted sites.
std::vector<std::string> TrustedSites(SettingsStore& store);
// Replaces the list; an entry that is not a host name (letters, digits, "-",
// "_", "." and a leading "*.") is refused with `error` saying which, and
// nothing is written.
bool SetTrustedSites(SettingsStore& store, const std::vector<std::string>& sites, std::string& error);
// Adds the site of `url` (false when the URL has no host; true when the list
// already covers it, unchanged).
bool TrustSite(SettingsStore& store, std::string_view url);
// Removes every entry that covers the site of `url`, so that it is checked
// again; false when none did.
bool DistrustSite(SettingsStore& store, std::string_view url);

}  // namespace tarnwick

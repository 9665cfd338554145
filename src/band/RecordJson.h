// What the band decided, as JSON (UTF-8), for hosts that hand it to a page or
// print it: the command line's `browse --json` and the extension's native
// messages.
#pragma once

#include <nlohmann/json.hpp>

#include "band/NavigationRecord.h"
#include "band/SiteInformation.h"

namespace tarnwick {

// {"text", "risk_rank", "risk_link", "country", "country_name", "runs": [{"kind":
// "text"|"link"|"country", "text", "target"}]}; the country members are null
// when the text names none.
nlohmann::ordered_json SiteInformationJson(const SiteInformation& strip);

// {"event", "url", "not_checked", "checked", "step", "message", "answer":
// "yes"|"no"|null, "cancel", "block_page", "risk_rank"}.
nlohmann::ordered_json NavigationJson(const char* event, const NavigationRecord& record);

}  // namespace tarnwick

// The built-in block page: phishingsite.htm and its logo.gif, resources of
// the program, shown as about:PhishingSite.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "band/ToolbarProcess.h"
#include "settings/Endpoints.h"

namespace tarnwick {

inline constexpr std::string_view kBlockPageResource = "phishingsite.htm";
inline constexpr std::string_view kBlockPageURL = "res://twtb.dll/phishingsite.htm";
inline constexpr std::string_view kAboutURLsKey = "SOFTWARE\\Microsoft\\Internet Explorer\\AboutURLs";

// The program's resource `name` (compared without case), or nullopt. The
// block page comes with its "report it" link pointing at the web site of
// `endpoints`, which is configuration and so cannot be built in.
std::optional<std::string> BandResource(const Endpoints& endpoints, std::string_view name);

// Makes about:PhishingSite show the block page: sets PhishingSite in the
// local machine's AboutURLs key, opened with full access. Where that key is
// missing or cannot be written (a user without rights on the machine-wide
// store) it does nothing, silently.
void RegisterAboutURL(ToolbarProcess& process);

}  // namespace tarnwick

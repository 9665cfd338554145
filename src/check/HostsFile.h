// Names given to this machine by a file in the hosts format ("ADDRESS NAME
// [NAME...]" a line, "#" starts a comment), for tests and demonstrations
// that reach their own servers under names the public DNS must never see.
// A name listed there resolves even under the reserved domains (.test,
// .example ...) that are otherwise never looked up.
#pragma once

#include <optional>
#include <string_view>

#include "support/IPv4Address.h"

namespace tarnwick {

// The first IPv4 address `text` gives `name` (compared without case);
// nullopt when no line names it. Lines whose address is not a dotted IPv4
// address (IPv6, garbage) are passed over.
std::optional<IPv4Bytes> LookUpHostsText(std::string_view text, std::string_view name);

}  // namespace tarnwick

// Text that came from a client or a server, made safe to print on a
// terminal: a byte string in Windows-1252 turned into UTF-8, with every
// control character written as an escape ("\r", "\n", "\t", else "\xHH"),
// so that no one can move the cursor, rewrite what is shown or forge lines.
// The controls are C0, DEL, and the five bytes Windows-1252 leaves undefined,
// which would become C1 controls.
#pragma once

#include <string>
#include <string_view>

namespace tarnwick {

std::string TerminalText(std::string_view ansi);

}  // namespace tarnwick

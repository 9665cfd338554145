// The options dialog on a terminal: every control with its caption and value
// label, changed by number, until OK or Cancel closes it. Works from a pipe
// as well, so scripts and tests can drive it.
#pragma once

#include <iosfwd>

#include "band/ToolbarProcess.h"

namespace tarnwick::cli {

// Runs the options dialog over the process's settings and options on `in`
// and `out`; true when OK saved them. An empty line is Enter (OK); "esc" or
// the end of the input is Escape (Cancel).
bool RunOptionsDialog(ToolbarProcess& process, std::istream& in, std::ostream& out);

}  // namespace tarnwick::cli

// Just enough JSON for one object per line of `tarnwick check --json`.
#pragma once

#include <string>
#include <string_view>

namespace tarnwick::cli {

// A JSON string literal of a Windows-1252 text (written as UTF-8).
std::string JsonString(std::string_view ansi);

}  // namespace tarnwick::cli

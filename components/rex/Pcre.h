// The one include of PCRE2, in its 8-bit width: subjects and patterns are the
// program's Windows-1252 bytes.
#pragma once

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include <string>

namespace tarnwick::rex {

// PCRE2's text for one of its error codes.
std::string PcreMessage(int code);

}  // namespace tarnwick::rex

// Base64 with the standard alphabet and "=" padding, as the toolbar decodes
// the pattern header.
#pragma once

#include <string>
#include <string_view>

namespace tarnwick::server {

std::string EncodeBase64(std::string_view bytes);

}  // namespace tarnwick::server

// HTML text for the web pages: escaping of every reflected value and the
// frame every page shares. Pages are Windows-1252, the system's text.
#pragma once

#include <string>
#include <string_view>

#include "server/HttpTypes.h"

namespace tarnwick::server {

// & < > " ' as character references.
std::string HtmlEscape(std::string_view text);

// A complete page with `title` as title and heading and `bodyHtml` below it.
HttpResponse HtmlPage(int status, std::string_view title, std::string_view bodyHtml);

}  // namespace tarnwick::server

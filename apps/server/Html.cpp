#include "server/Html.h"

namespace tarnwick::server {

std::string HtmlEscape(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  for (const char c : text) {
    switch (c) {
      case '&': escaped += "&amp;"; break;
      case '<': escaped += "&lt;"; break;
      case '>': escaped += "&gt;"; break;
      case '"': escaped += "&quot;"; break;
      case '\'': escaped += "&#39;"; break;
      default: escaped += c;
    }
  }
  return escaped;
}

HttpResponse HtmlPage(int status, std::string_view title, std::string_view bodyHtml) {
  HttpResponse response;
  response.status = status;
  response.contentType = "text/html; charset=windows-1252";
  const std::string escapedTitle = HtmlEscape(title);
  response.body = "<!DOCTYPE html>\n<html><head><meta charset=\"windows-1252\"><title>" + escapedTitle +
                  " - Tarnwick Toolbar</title></head>\n<body>\n<h1>" + escapedTitle + "</h1>\n" +
                  std::string(bodyHtml) + "\n<p><a href=\"/\">Tarnwick Toolbar</a></p>\n</body></html>\n";
  return response;
}

}  // namespace tarnwick::server

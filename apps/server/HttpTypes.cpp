#include "server/HttpTypes.h"

#include "support/Text.h"

namespace tarnwick::server {
namespace {

std::string_view ReasonPhrase(int status) {
  switch (status) {
    case 400: return "Bad Request";
    case 403: return "Forbidden";
    case 404: return "Not Found";
    case 405: return "Method Not Allowed";
    case 413: return "Content Too Large";
    case 414: return "URI Too Long";
    case 415: return "Unsupported Media Type";
    case 500: return "Internal Server Error";
    default: return "Error";
  }
}

}  // namespace

std::string_view HttpRequest::Header(std::string_view name) const {
  for (const auto& [key, value] : headers) {
    if (EqualsIgnoreCase(key, name)) return value;
  }
  return {};
}

HttpResponse ErrorResponse(int status, std::string_view detail) {
  HttpResponse response;
  response.status = status;
  response.body = std::to_string(status) + " " + std::string(ReasonPhrase(status));
  if (!detail.empty()) response.body += ": " + std::string(detail);
  response.body += "\r\n";
  return response;
}

}  // namespace tarnwick::server

#include "server/Router.h"

namespace tarnwick::server {
namespace {

HttpResponse MethodNotAllowed(const char* allowed) {
  HttpResponse response = ErrorResponse(405);
  response.headers.emplace_back("Allow", allowed);
  return response;
}

bool IsHostHeader(std::string_view host) {
  if (host.empty() || host.size() > 255) return false;
  for (const char c : host) {
    const bool allowed = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' ||
                         c == '-' || c == ':' || c == '[' || c == ']';
    if (!allowed) return false;
  }
  return true;
}

}  // namespace

std::string Router::SiteAddress(const HttpRequest& request) const {
  const std::string_view host = request.Header("Host");
  return IsHostHeader(host) ? "http://" + std::string(host) : ownAddress_;
}

HttpResponse Router::Get(const HttpRequest& request) {
  const std::string_view path = request.path;
  if (path.starts_with(kCheckUrlPrefix)) {
    const auto question = ParseCheckUrlPath(path.substr(kCheckUrlPrefix.size()));
    if (!question) return ErrorResponse(400, "expected /check_url/SCHEME://HOST[:PORT][/ADDRESS]");
    return verdicts_.Answer(*question, SiteAddress(request), request.clientAddress);
  }
  if (path.starts_with(kUpdatesPrefix)) {
    return files_.Update(path.substr(kUpdatesPrefix.size()), request.Header("If-Modified-Since"));
  }
  if (path == "/file_hashes") return files_.FileHashes(request.query);
  if (path.starts_with(kCheckUpdatePrefix)) return releases_.CheckUpdate(path.substr(kCheckUpdatePrefix.size()));
  if (auto page = pages_.Page(path, request.query)) return std::move(*page);
  return ErrorResponse(404);
}

HttpResponse Router::Handle(const HttpRequest& request) {
  if (request.path.empty() || request.path.front() != '/') return ErrorResponse(400, "expected an absolute path");
  if (request.method == "GET" || request.method == "HEAD") return Get(request);
  if (request.method == "POST") {
    if (auto answer = pages_.Submit(request)) return std::move(*answer);
    return MethodNotAllowed("GET, HEAD");
  }
  return MethodNotAllowed("GET, HEAD, POST");
}

}  // namespace tarnwick::server

#include "Transfer.h"

namespace tarnwick::pagefetch {
namespace {

// Reason phrases for answers whose status line carries none (HTTP/2).
std::string StandardReason(long status) {
  switch (status) {
    case 301: return "Moved Permanently";
    case 302: return "Found";
    case 304: return "Not Modified";
    case 400: return "Bad Request";
    case 401: return "Unauthorized";
    case 403: return "Forbidden";
    case 404: return "Not Found";
    case 500: return "Internal Server Error";
    case 502: return "Bad Gateway";
    case 503: return "Service Unavailable";
    case 504: return "Gateway Timeout";
    default: return "HTTP error";
  }
}

// "HTTP/1.1 404 Not Found" -> "Not Found".
std::string ReasonOf(std::string_view statusLine) {
  const auto first = statusLine.find(' ');
  if (first == std::string_view::npos) return {};
  const auto second = statusLine.find(' ', first + 1);
  return second == std::string_view::npos ? std::string() : std::string(statusLine.substr(second + 1));
}

}  // namespace

bool ReadHeaderBlock(const std::string& block, std::vector<std::string>& lines, std::string& why) {
  std::size_t start = 0;
  while (start < block.size()) {
    auto end = block.find("\r\n", start);
    if (end == std::string::npos) end = block.size();
    std::string line = block.substr(start, end - start);
    start = end + 2;
    if (line.empty()) continue;
    if (line.find_first_of("\r\n") != std::string::npos || line.find(':') == std::string::npos || line.front() == ':' ||
        line.front() == ' ') {
      why = "Invalid request header: " + line;
      return false;
    }
    lines.push_back(std::move(line));
  }
  return true;
}

void Transfer::HeaderLine(std::string_view line) {
  received_ += line.size();
  while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.remove_suffix(1);
  if (line.starts_with("HTTP/")) headers_.clear();
  if (line.empty()) return;
  if (!headers_.empty()) headers_ += "\r\n";
  headers_ += line;
}

void Transfer::HeaderBlock(std::string_view block) {
  received_ += block.size();
  while (block.ends_with("\r\n")) block.remove_suffix(2);
  headers_ = std::string(block);
}

bool Transfer::Body(std::string_view bytes) {
  received_ += bytes.size();
  if (body_.size() + bytes.size() > maxBody_) {
    bodyTooLarge_ = true;
    return false;
  }
  body_.append(bytes);
  return true;
}

void Transfer::Answered(long status) {
  if (status >= 200 && status < 300) {
    page_ = std::move(body_);
    state_ = kStatePage;
  } else {
    std::string text = body_;
    if (text.empty()) text = ReasonOf(std::string_view(headers_).substr(0, headers_.find("\r\n")));
    if (text.empty()) text = StandardReason(status);
    page_ = std::to_string(status) + " " + text;
    state_ = kStateError;
  }
  body_.clear();
}

void Transfer::Failed(std::int32_t number, std::string what) {
  page_ = std::to_string(number) + " " + what;
  state_ = kStateError;
  body_.clear();
}

std::string Transfer::TooLarge() const { return "answer larger than " + std::to_string(maxBody_) + " bytes"; }

}  // namespace tarnwick::pagefetch

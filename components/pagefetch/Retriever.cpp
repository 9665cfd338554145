#include "Retriever.h"

#include <curl/curl.h>

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace tarnwick::pagefetch {
namespace {

CURLM* Multi(void* handle) { return static_cast<CURLM*>(handle); }

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

// Splits a CR LF header block into curl's list; nullopt when a line would
// smuggle a line break or is not "Name: value".
bool BuildHeaderList(const std::string& block, curl_slist*& list, std::string& why) {
  std::size_t start = 0;
  while (start < block.size()) {
    auto end = block.find("\r\n", start);
    if (end == std::string::npos) end = block.size();
    const std::string line = block.substr(start, end - start);
    start = end + 2;
    if (line.empty()) continue;
    if (line.find_first_of("\r\n") != std::string::npos || line.find(':') == std::string::npos || line.front() == ':' ||
        line.front() == ' ') {
      why = "Invalid request header: " + line;
      return false;
    }
    list = curl_slist_append(list, line.c_str());
  }
  return true;
}

}  // namespace

struct Retriever::Transfer {
  CURL* easy = nullptr;
  curl_slist* headerList = nullptr;
  std::string postData;
  std::string headers;  // the current response's block
  std::string body;
  std::string page;  // body or error answer, once finished
  std::size_t maxBody = 0;
  std::size_t received = 0;  // header and body bytes, every response
  bool bodyTooLarge = false;
  std::int32_t state = kStateWaiting;
  char error[CURL_ERROR_SIZE] = {};

  ~Transfer() {
    curl_easy_cleanup(easy);
    curl_slist_free_all(headerList);
  }

  static size_t OnHeader(char* data, size_t size, size_t count, void* self) {
    auto& transfer = *static_cast<Transfer*>(self);
    transfer.received += size * count;
    std::string_view line(data, size * count);
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.remove_suffix(1);
    // Every response (redirects, 100 Continue) starts a fresh block.
    if (line.starts_with("HTTP/")) transfer.headers.clear();
    if (!line.empty()) {
      if (!transfer.headers.empty()) transfer.headers += "\r\n";
      transfer.headers += line;
    }
    return size * count;
  }

  static size_t OnBody(char* data, size_t size, size_t count, void* self) {
    auto& transfer = *static_cast<Transfer*>(self);
    transfer.received += size * count;
    if (transfer.body.size() + size * count > transfer.maxBody) {
      transfer.bodyTooLarge = true;
      return 0;  // aborts the transfer with a write error
    }
    transfer.body.append(data, size * count);
    return size * count;
  }

  void Complete(CURLcode result) {
    long status = 0;
    curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status);
    if (result != CURLE_OK) {
      std::string what = curl_easy_strerror(result);
      if (bodyTooLarge) what += ": answer larger than " + std::to_string(maxBody) + " bytes";
      if (error[0] != '\0') what += std::string(": ") + error;
      page = std::to_string(kTransportErrorBase + static_cast<int>(result)) + " " + what;
      state = kStateError;
    } else if (status >= 200 && status < 300) {
      page = std::move(body);
      state = kStatePage;
    } else {
      std::string text = body;
      if (text.empty()) text = ReasonOf(headers.substr(0, headers.find("\r\n")));
      if (text.empty()) text = StandardReason(status);
      page = std::to_string(status) + " " + text;
      state = kStateError;
    }
    body.clear();
  }
};

Retriever::Retriever(RetrieverLimits limits) : limits_(limits) {
  curl_global_init(CURL_GLOBAL_DEFAULT);
  multi_ = curl_multi_init();
}

Retriever::~Retriever() {
  for (auto& [url, transfer] : transfers_) curl_multi_remove_handle(Multi(multi_), transfer->easy);
  transfers_.clear();
  curl_multi_cleanup(Multi(multi_));
}

std::string Retriever::RetrieveAsync(const std::string& url, const std::string& agent, const std::string& headers) {
  return Start(url, agent, headers, nullptr);
}

std::string Retriever::RetrieveAsyncPost(const std::string& url, const std::string& agent, const std::string& headers,
                                         const std::string& postData) {
  return Start(url, agent, headers, &postData);
}

std::string Retriever::Start(const std::string& url, const std::string& agent, const std::string& headers,
                             const std::string* postData) {
  CURLU* parsed = curl_url();
  const CURLUcode parseResult = curl_url_set(parsed, CURLUPART_URL, url.c_str(), 0);
  char* scheme = nullptr;
  if (parseResult == CURLUE_OK) curl_url_get(parsed, CURLUPART_SCHEME, &scheme, 0);
  const std::string schemeText = scheme != nullptr ? scheme : "";
  curl_free(scheme);
  curl_url_cleanup(parsed);
  if (parseResult != CURLUE_OK) return std::string("Invalid URL: ") + curl_url_strerror(parseResult);
  if (schemeText != "http" && schemeText != "https") return "Unsupported protocol: " + schemeText;

  auto transfer = std::make_unique<Transfer>();
  std::string why;
  if (!BuildHeaderList(headers, transfer->headerList, why)) return why;
  transfer->easy = curl_easy_init();
  if (transfer->easy == nullptr) return "Out of memory";
  transfer->maxBody = limits_.maxBodyBytes;
  CURL* easy = transfer->easy;
  curl_easy_setopt(easy, CURLOPT_URL, url.c_str());
  curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(easy, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 1L);
  curl_easy_setopt(easy, CURLOPT_MAXREDIRS, 5L);
  curl_easy_setopt(easy, CURLOPT_USERAGENT, agent.c_str());
  curl_easy_setopt(easy, CURLOPT_HTTPHEADER, transfer->headerList);
  curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT, limits_.connectSeconds);
  curl_easy_setopt(easy, CURLOPT_TIMEOUT, limits_.totalSeconds);
  curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, transfer->error);
  curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, &Transfer::OnHeader);
  curl_easy_setopt(easy, CURLOPT_HEADERDATA, transfer.get());
  curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &Transfer::OnBody);
  curl_easy_setopt(easy, CURLOPT_WRITEDATA, transfer.get());
  curl_easy_setopt(easy, CURLOPT_PRIVATE, transfer.get());
  if (postData != nullptr) {
    transfer->postData = *postData;
    curl_easy_setopt(easy, CURLOPT_POSTFIELDS, transfer->postData.c_str());
    curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(transfer->postData.size()));
  }

  RetrieveAsyncFinish(url);
  if (curl_multi_add_handle(Multi(multi_), easy) != CURLM_OK) return "Could not start the transfer";
  transfers_[url] = std::move(transfer);
  Pump();
  return "ok";
}

void Retriever::Pump() {
  int running = 0;
  curl_multi_perform(Multi(multi_), &running);
  int queued = 0;
  while (CURLMsg* message = curl_multi_info_read(Multi(multi_), &queued)) {
    if (message->msg != CURLMSG_DONE) continue;
    Transfer* transfer = nullptr;
    curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &transfer);
    const CURLcode result = message->data.result;
    curl_multi_remove_handle(Multi(multi_), message->easy_handle);
    transfer->Complete(result);
  }
}

Retriever::Transfer* Retriever::Find(const std::string& url) {
  const auto it = transfers_.find(url);
  return it == transfers_.end() ? nullptr : it->second.get();
}

std::int32_t Retriever::RetrieveAsyncCompleted(const std::string& url) {
  Pump();
  const Transfer* transfer = Find(url);
  return transfer == nullptr ? kStateError : transfer->state;
}

std::string Retriever::RetrieveAsyncHeaders(const std::string& url) {
  const Transfer* transfer = Find(url);
  return transfer == nullptr ? std::string() : transfer->headers;
}

std::int32_t Retriever::RetrieveAsyncPageSize(const std::string& url) {
  const Transfer* transfer = Find(url);
  return transfer == nullptr ? 0 : static_cast<std::int32_t>(transfer->page.size());
}

std::int32_t Retriever::RetrieveAsyncReceived(const std::string& url) {
  const Transfer* transfer = Find(url);
  if (transfer == nullptr) return 0;
  return static_cast<std::int32_t>(std::min<std::size_t>(transfer->received, INT32_MAX));
}

void Retriever::RetrieveAsyncPage(const std::string& url, std::vector<std::uint8_t>& buffer) {
  const Transfer* transfer = Find(url);
  if (transfer == nullptr) return;
  const std::size_t count = std::min(buffer.size(), transfer->page.size());
  std::copy_n(transfer->page.begin(), count, buffer.begin());
}

void Retriever::RetrieveAsyncFinish(const std::string& url) {
  const auto it = transfers_.find(url);
  if (it == transfers_.end()) return;
  curl_multi_remove_handle(Multi(multi_), it->second->easy);
  transfers_.erase(it);
}

void Retriever::RetrieveAsyncWait(std::int32_t milliseconds) {
  int ready = 0;
  curl_multi_poll(Multi(multi_), nullptr, 0, milliseconds < 0 ? 0 : milliseconds, &ready);
}

}  // namespace tarnwick::pagefetch

// The retrieval engine's transport on POSIX: libcurl's multi interface.
// Transport failures are numbered 1000 + libcurl's error code.
#include <curl/curl.h>

#include "Transport.h"

namespace tarnwick::pagefetch {
namespace {

constexpr std::int32_t kTransportErrorBase = 1000;

class CurlTransfer final : public Transfer {
 public:
  CurlTransfer(CURLM* multi, std::size_t maxBody) : Transfer(maxBody), multi_(multi) {}
  ~CurlTransfer() override {
    if (easy != nullptr) curl_multi_remove_handle(multi_, easy);
    curl_easy_cleanup(easy);
    curl_slist_free_all(headerList);
  }

  static size_t OnHeader(char* data, size_t size, size_t count, void* self) {
    static_cast<CurlTransfer*>(self)->HeaderLine({data, size * count});
    return size * count;
  }

  static size_t OnBody(char* data, size_t size, size_t count, void* self) {
    // Refusing the bytes aborts the transfer with a write error.
    return static_cast<CurlTransfer*>(self)->Body({data, size * count}) ? size * count : 0;
  }

  void Complete(CURLcode result) {
    if (result != CURLE_OK) {
      std::string what = curl_easy_strerror(result);
      if (bodyTooLarge()) what += ": " + TooLarge();
      if (error[0] != '\0') what += std::string(": ") + error;
      Failed(kTransportErrorBase + static_cast<int>(result), what);
      return;
    }
    long status = 0;
    curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status);
    Answered(status);
  }

  CURL* easy = nullptr;
  curl_slist* headerList = nullptr;
  std::string postData;
  char error[CURL_ERROR_SIZE] = {};

 private:
  CURLM* multi_;
};

class CurlTransport final : public Transport {
 public:
  explicit CurlTransport(const RetrieverLimits& limits) : limits_(limits) {
    curl_global_init(CURL_GLOBAL_DEFAULT);
    multi_ = curl_multi_init();
  }
  ~CurlTransport() override { curl_multi_cleanup(multi_); }

  std::unique_ptr<Transfer> Start(const TransferRequest& request, std::string& why) override {
    if (!SchemeSupported(request.url, why)) return nullptr;
    auto transfer = std::make_unique<CurlTransfer>(multi_, limits_.maxBodyBytes);
    for (const std::string& line : request.headerLines) {
      transfer->headerList = curl_slist_append(transfer->headerList, line.c_str());
    }
    transfer->easy = curl_easy_init();
    if (transfer->easy == nullptr) {
      why = "Out of memory";
      return nullptr;
    }
    CURL* easy = transfer->easy;
    curl_easy_setopt(easy, CURLOPT_URL, request.url.c_str());
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(easy, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(easy, CURLOPT_MAXREDIRS, 5L);
    curl_easy_setopt(easy, CURLOPT_USERAGENT, request.agent.c_str());
    curl_easy_setopt(easy, CURLOPT_HTTPHEADER, transfer->headerList);
    curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT, limits_.connectSeconds);
    curl_easy_setopt(easy, CURLOPT_TIMEOUT, limits_.totalSeconds);
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, transfer->error);
    curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, &CurlTransfer::OnHeader);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, transfer.get());
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &CurlTransfer::OnBody);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, transfer.get());
    curl_easy_setopt(easy, CURLOPT_PRIVATE, transfer.get());
    if (request.postData != nullptr) {
      transfer->postData = *request.postData;
      curl_easy_setopt(easy, CURLOPT_POSTFIELDS, transfer->postData.c_str());
      curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(transfer->postData.size()));
    }
    if (curl_multi_add_handle(multi_, easy) != CURLM_OK) {
      why = "Could not start the transfer";
      return nullptr;
    }
    return transfer;
  }

  void Pump() override {
    int running = 0;
    curl_multi_perform(multi_, &running);
    int queued = 0;
    while (CURLMsg* message = curl_multi_info_read(multi_, &queued)) {
      if (message->msg != CURLMSG_DONE) continue;
      CurlTransfer* transfer = nullptr;
      curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &transfer);
      const CURLcode result = message->data.result;
      curl_multi_remove_handle(multi_, message->easy_handle);
      transfer->Complete(result);
    }
  }

  void Wait(std::int32_t milliseconds) override {
    int ready = 0;
    curl_multi_poll(multi_, nullptr, 0, milliseconds, &ready);
  }

 private:
  static bool SchemeSupported(const std::string& url, std::string& why) {
    CURLU* parsed = curl_url();
    const CURLUcode parseResult = curl_url_set(parsed, CURLUPART_URL, url.c_str(), 0);
    char* scheme = nullptr;
    if (parseResult == CURLUE_OK) curl_url_get(parsed, CURLUPART_SCHEME, &scheme, 0);
    const std::string schemeText = scheme != nullptr ? scheme : "";
    curl_free(scheme);
    curl_url_cleanup(parsed);
    if (parseResult != CURLUE_OK) {
      why = std::string("Invalid URL: ") + curl_url_strerror(parseResult);
      return false;
    }
    if (schemeText != "http" && schemeText != "https") {
      why = "Unsupported protocol: " + schemeText;
      return false;
    }
    return true;
  }

  RetrieverLimits limits_;
  CURLM* multi_;
};

}  // namespace

std::unique_ptr<Transport> MakeTransport(const RetrieverLimits& limits) {
  return std::make_unique<CurlTransport>(limits);
}

}  // namespace tarnwick::pagefetch

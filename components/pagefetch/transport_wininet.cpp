// The retrieval engine's transport on Windows: WinINet in asynchronous mode,
// with the system's Internet settings (its proxy among them). Each transfer
// has a session of its own (its agent is the session's), and moves only when
// its caller polls: WinINet's worker thread merely reports that an operation
// completed, and the caller's thread asks for the next one. Transport
// failures carry WinINet's own error numbers (12002 timed out, 12029 cannot
// connect, 12030 connection aborted, 12152 invalid server response), all
// above every HTTP status.
#include <windows.h>
// After windows.h, which it needs.
#include <wininet.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>
#include <set>
#include <string_view>

#include "Transport.h"

namespace tarnwick::pagefetch {
namespace {

std::string DescribeError(DWORD error) {
  char* text = nullptr;
  const DWORD length =
      FormatMessageA(FORMAT_MESSAGE_FROM_HMODULE | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_ALLOCATE_BUFFER |
                         FORMAT_MESSAGE_IGNORE_INSERTS,
                     GetModuleHandleA("wininet.dll"), error, 0, reinterpret_cast<char*>(&text), 0, nullptr);
  std::string described(text != nullptr ? text : "", length);
  LocalFree(text);
  while (!described.empty() && (described.back() == '\n' || described.back() == '\r' || described.back() == ' ')) {
    described.pop_back();
  }
  if (!described.empty()) return described;
  switch (error) {
    case ERROR_INTERNET_TIMEOUT: return "The operation timed out";
    case ERROR_INTERNET_NAME_NOT_RESOLVED: return "The server name could not be resolved";
    case ERROR_INTERNET_CANNOT_CONNECT: return "Cannot connect to the server";
    case ERROR_INTERNET_CONNECTION_ABORTED: return "The connection with the server was terminated abnormally";
    case ERROR_INTERNET_CONNECTION_RESET: return "The connection with the server was reset";
    case ERROR_HTTP_INVALID_SERVER_RESPONSE: return "The server returned an invalid or unrecognized response";
    default: return "WinINet error " + std::to_string(error);
  }
}

// What WinINet's worker thread and the transfer share: whether the pending
// operation completed, and how. It lives until both have let go: the transfer
// when it ends, WinINet when it reports the request handle closed (the last
// report it sends for that handle).
class Completion {
 public:
  explicit Completion(HANDLE wake) {
    DuplicateHandle(GetCurrentProcess(), wake, GetCurrentProcess(), &wake_, 0, FALSE, DUPLICATE_SAME_ACCESS);
  }

  void Release() {
    if (--references_ == 0) delete this;
  }
  void Complete(const INTERNET_ASYNC_RESULT& result) {
    {
      std::lock_guard<std::mutex> lock(mutex_);
      done_ = true;
      // A result of 0 is a failure when it comes with an error (for the
      // data-available question it can also mean the end of the body).
      error_ = result.dwResult == 0 ? result.dwError : ERROR_SUCCESS;
    }
    SetEvent(wake_);
  }
  // True once the pending operation completed; `error` then says how.
  bool Take(DWORD& error) {
    std::lock_guard<std::mutex> lock(mutex_);
    if (!done_) return false;
    done_ = false;
    error = error_;
    return true;
  }

 private:
  ~Completion() { CloseHandle(wake_); }

  std::atomic<int> references_{2};
  std::mutex mutex_;
  bool done_ = false;
  DWORD error_ = ERROR_SUCCESS;
  HANDLE wake_ = nullptr;
};

void CALLBACK OnStatus(HINTERNET, DWORD_PTR context, DWORD status, LPVOID information, DWORD) {
  auto* completion = reinterpret_cast<Completion*>(context);
  if (completion == nullptr) return;
  if (status == INTERNET_STATUS_REQUEST_COMPLETE) {
    completion->Complete(*static_cast<const INTERNET_ASYNC_RESULT*>(information));
  } else if (status == INTERNET_STATUS_HANDLE_CLOSING) {
    completion->Release();
  }
}

class WinInetTransport;

class WinInetTransfer final : public Transfer {
 public:
  WinInetTransfer(WinInetTransport& transport, HANDLE wake, const RetrieverLimits& limits);
  ~WinInetTransfer() override;

  bool Open(const TransferRequest& request, const RetrieverLimits& limits, std::string& why) {
    char scheme[32] = {};
    char host[INTERNET_MAX_HOST_NAME_LENGTH] = {};
    char path[INTERNET_MAX_URL_LENGTH] = {};
    URL_COMPONENTSA parts{};
    parts.dwStructSize = sizeof parts;
    parts.lpszScheme = scheme;
    parts.dwSchemeLength = sizeof scheme;
    parts.lpszHostName = host;
    parts.dwHostNameLength = sizeof host;
    parts.lpszUrlPath = path;
    parts.dwUrlPathLength = sizeof path;
    if (!InternetCrackUrlA(request.url.c_str(), static_cast<DWORD>(request.url.size()), 0, &parts)) {
      why = "Invalid URL: " + DescribeError(GetLastError());
      return false;
    }
    if (parts.nScheme != INTERNET_SCHEME_HTTP && parts.nScheme != INTERNET_SCHEME_HTTPS) {
      why = std::string("Unsupported protocol: ") + scheme;
      return false;
    }
    // WinINet takes what its parser leaves, blanks and all: a host it could
    // not send is refused here.
    if (host[0] == '\0' || std::string_view(host).find_first_of(" \t\r\n/\\") != std::string_view::npos) {
      why = "Invalid URL: bad host name";
      return false;
    }
    session_ =
        InternetOpenA(request.agent.c_str(), INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, INTERNET_FLAG_ASYNC);
    if (session_ == nullptr) {
      why = "Could not start the transfer: " + DescribeError(GetLastError());
      return false;
    }
    InternetSetStatusCallbackA(session_, &OnStatus);
    DWORD connectMs = static_cast<DWORD>(limits.connectSeconds * 1000);
    DWORD totalMs = static_cast<DWORD>(limits.totalSeconds * 1000);
    InternetSetOptionA(session_, INTERNET_OPTION_CONNECT_TIMEOUT, &connectMs, sizeof connectMs);
    InternetSetOptionA(session_, INTERNET_OPTION_RECEIVE_TIMEOUT, &totalMs, sizeof totalMs);
    InternetSetOptionA(session_, INTERNET_OPTION_SEND_TIMEOUT, &totalMs, sizeof totalMs);
    // The connection takes no context: only the request reports to us.
    HINTERNET connection = InternetConnectA(session_, host, parts.nPort, nullptr, nullptr, INTERNET_SERVICE_HTTP, 0, 0);
    const bool post = request.postData != nullptr;
    DWORD flags = INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE | INTERNET_FLAG_PRAGMA_NOCACHE |
                  INTERNET_FLAG_NO_UI | INTERNET_FLAG_NO_COOKIES | INTERNET_FLAG_NO_AUTH;
    if (parts.nScheme == INTERNET_SCHEME_HTTPS) flags |= INTERNET_FLAG_SECURE;
    if (connection != nullptr) {
      request_ = HttpOpenRequestA(connection, post ? "POST" : "GET", path[0] != '\0' ? path : "/", nullptr, nullptr,
                                  nullptr, flags, reinterpret_cast<DWORD_PTR>(completion_));
    }
    if (request_ == nullptr) {
      why = "Could not start the transfer: " + DescribeError(GetLastError());
      return false;
    }
    std::string headers;
    for (const std::string& line : request.headerLines) headers += line + "\r\n";
    if (post) {
      postData_ = *request.postData;
      if (headers.find("Content-Type:") == std::string::npos) {
        headers += "Content-Type: application/x-www-form-urlencoded\r\n";
      }
    }
    if (!HttpSendRequestA(request_, headers.empty() ? nullptr : headers.c_str(), static_cast<DWORD>(headers.size()),
                          postData_.empty() ? nullptr : postData_.data(), static_cast<DWORD>(postData_.size()))) {
      const DWORD error = GetLastError();
      if (error == ERROR_IO_PENDING) {
        pending_ = true;
      } else {
        Fail(error);
      }
    }
    return true;
  }

  // Takes the transfer as far as WinINet has its answer.
  void Advance() {
    if (finished()) return;
    if (std::chrono::steady_clock::now() > deadline_) {
      Fail(ERROR_INTERNET_TIMEOUT);
      return;
    }
    if (pending_) {
      DWORD error = ERROR_SUCCESS;
      if (!completion_->Take(error)) return;
      pending_ = false;
      if (error != ERROR_SUCCESS) {
        Fail(error);
        return;
      }
    }
    if (!headRead_) {
      if (!ReadHead()) return;
      headRead_ = true;
    }
    ReadBody();
  }

 private:
  void Fail(DWORD error) { Failed(static_cast<std::int32_t>(error), DescribeError(error)); }

  // The final response's status and header block; false when it is no HTTP
  // answer at all. WinINet takes any bytes for an HTTP/0.9 page and makes up
  // a bare status line for them: an answer without one header line is
  // refused as such.
  bool ReadHead() {
    DWORD size = 0;
    HttpQueryInfoA(request_, HTTP_QUERY_RAW_HEADERS_CRLF, nullptr, &size, nullptr);
    std::string block(size, '\0');
    const bool read = size != 0 && HttpQueryInfoA(request_, HTTP_QUERY_RAW_HEADERS_CRLF, block.data(), &size, nullptr);
    block.resize(read ? size : 0);
    const auto firstLineEnd = block.find("\r\n");
    if (!block.starts_with("HTTP/") || firstLineEnd == std::string::npos ||
        block.compare(firstLineEnd, 4, "\r\n\r\n") == 0) {
      Fail(ERROR_HTTP_INVALID_SERVER_RESPONSE);
      return false;
    }
    HeaderBlock(block);
    DWORD status = 0;
    DWORD statusSize = sizeof status;
    HttpQueryInfoA(request_, HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER, &status, &statusSize, nullptr);
    status_ = static_cast<long>(status);
    DWORD length = 0;
    DWORD lengthSize = sizeof length;
    if (HttpQueryInfoA(request_, HTTP_QUERY_CONTENT_LENGTH | HTTP_QUERY_FLAG_NUMBER, &length, &lengthSize, nullptr)) {
      contentLength_ = length;
    }
    return true;
  }

  void ReadBody() {
    char buffer[16384];
    for (;;) {
      DWORD available = 0;
      if (!InternetQueryDataAvailable(request_, &available, 0, 0)) {
        const DWORD error = GetLastError();
        if (error == ERROR_IO_PENDING) {
          pending_ = true;
        } else {
          Fail(error);
        }
        return;
      }
      if (available == 0) break;
      DWORD read = 0;
      if (!InternetReadFile(request_, buffer, std::min<DWORD>(available, sizeof buffer), &read)) {
        Fail(GetLastError());
        return;
      }
      if (read == 0) break;
      if (!Body({buffer, read})) {
        Failed(ERROR_INTERNET_CONNECTION_ABORTED, TooLarge());
        return;
      }
    }
    // The server closed the connection before sending what it announced.
    if (contentLength_ >= 0 && bodySize() < static_cast<std::size_t>(contentLength_)) {
      Failed(ERROR_INTERNET_CONNECTION_ABORTED, DescribeError(ERROR_INTERNET_CONNECTION_ABORTED) + ": " +
                                                    std::to_string(bodySize()) + " of " +
                                                    std::to_string(contentLength_) + " bytes arrived");
      return;
    }
    Answered(status_);
  }

  WinInetTransport& transport_;
  Completion* completion_;
  std::chrono::steady_clock::time_point deadline_;
  HINTERNET session_ = nullptr;
  HINTERNET request_ = nullptr;
  std::string postData_;
  bool pending_ = false;   // an operation runs on WinINet's thread
  bool headRead_ = false;  // the answer's status and headers are in
  long status_ = 0;
  long long contentLength_ = -1;
};

class WinInetTransport final : public Transport {
 public:
  explicit WinInetTransport(const RetrieverLimits& limits)
      : limits_(limits), wake_(CreateEventA(nullptr, FALSE, FALSE, nullptr)) {}
  ~WinInetTransport() override { CloseHandle(wake_); }

  std::unique_ptr<Transfer> Start(const TransferRequest& request, std::string& why) override {
    auto transfer = std::make_unique<WinInetTransfer>(*this, wake_, limits_);
    if (!transfer->Open(request, limits_, why)) return nullptr;
    return transfer;
  }

  void Pump() override {
    for (WinInetTransfer* transfer : transfers) transfer->Advance();
  }

  // Window messages end the wait too: the caller is a user-interface thread.
  void Wait(std::int32_t milliseconds) override {
    MsgWaitForMultipleObjects(1, &wake_, FALSE, static_cast<DWORD>(milliseconds), QS_ALLINPUT);
  }

  // The transfers alive, each entered by itself for its life.
  std::set<WinInetTransfer*> transfers;

 private:
  RetrieverLimits limits_;
  HANDLE wake_;
};

WinInetTransfer::WinInetTransfer(WinInetTransport& transport, HANDLE wake, const RetrieverLimits& limits)
    : Transfer(limits.maxBodyBytes),
      transport_(transport),
      completion_(new Completion(wake)),
      deadline_(std::chrono::steady_clock::now() + std::chrono::seconds(limits.totalSeconds)) {
  transport_.transfers.insert(this);
}

WinInetTransfer::~WinInetTransfer() {
  transport_.transfers.erase(this);
  // Closing the session cancels what is pending and closes the request,
  // whose closing report lets WinINet's share of the completion go; without
  // a request WinINet has no share to let go.
  if (request_ == nullptr) completion_->Release();
  if (session_ != nullptr) InternetCloseHandle(session_);
  completion_->Release();
}

}  // namespace

std::unique_ptr<Transport> MakeTransport(const RetrieverLimits& limits) {
  return std::make_unique<WinInetTransport>(limits);
}

}  // namespace tarnwick::pagefetch

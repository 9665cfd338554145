// One transfer of the retrieval engine as every transport fills it: the
// answer's header block and body as they arrive, then its end in one of the
// engine's states with the page the caller reads. The transports (libcurl on
// POSIX, WinINet on Windows) only move bytes; the states, the limits and the
// text of an error answer are decided here, the same on every platform.
//
// States (RetrieveAsyncCompleted):
//   4  waiting for the server: entered as soon as the request is issued, so a
//      caller's time-out applies from the first poll on
//   2  finished with a page (a 2xx answer); the page is the body
//   3  finished with an error answer; the page is "<number> <text>":
//        an HTTP error: the status, and the body or, when the body is empty,
//        the reason phrase ("404 Not Found", "304 Not Modified");
//        a transport failure: a number above every HTTP status (libcurl's
//        error code + 1000, WinINet's own 12000s) and what failed
//   A URL with no transfer reads as state 3 with an empty page.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::pagefetch {

inline constexpr std::int32_t kStateWaiting = 4;
inline constexpr std::int32_t kStatePage = 2;
inline constexpr std::int32_t kStateError = 3;

struct RetrieverLimits {
  long connectSeconds = 30;
  long totalSeconds = 300;
  std::size_t maxBodyBytes = 64u << 20;
};

// What the caller asked for, checked: header lines without line breaks.
struct TransferRequest {
  std::string url;
  std::string agent;
  std::vector<std::string> headerLines;   // "Name: value", without CR LF
  const std::string* postData = nullptr;  // null for a GET
};

// Splits a CR LF header block into its lines; false, with `why`, when a line
// would smuggle a line break or is not "Name: value".
bool ReadHeaderBlock(const std::string& block, std::vector<std::string>& lines, std::string& why);

class Transfer {
 public:
  explicit Transfer(std::size_t maxBodyBytes) : maxBody_(maxBodyBytes) {}
  // The transport's own part of a transfer goes with it.
  virtual ~Transfer() = default;
  Transfer(const Transfer&) = delete;
  Transfer& operator=(const Transfer&) = delete;

  // One header line of a response as it arrives; the status line of a new
  // response (a redirect's target, after 100 Continue) starts a fresh block.
  void HeaderLine(std::string_view line);
  // A response's whole header block at once (CR LF lines; a blank end is
  // dropped).
  void HeaderBlock(std::string_view block);
  // Body bytes; false once they would pass the body limit (the transport
  // then ends the transfer with TooLarge()).
  bool Body(std::string_view bytes);

  // The transfer ended with an HTTP answer of `status`.
  void Answered(long status);
  // The transfer failed below HTTP: `number` and what went wrong.
  void Failed(std::int32_t number, std::string what);
  // Why the transfer ended after Body refused the bytes.
  std::string TooLarge() const;
  bool bodyTooLarge() const { return bodyTooLarge_; }

  std::int32_t state() const { return state_; }
  bool finished() const { return state_ != kStateWaiting; }
  const std::string& headers() const { return headers_; }
  const std::string& page() const { return page_; }
  std::size_t bodySize() const { return body_.size(); }
  // Header and body bytes of every response so far.
  std::size_t received() const { return received_; }

 private:
  std::size_t maxBody_;
  std::string headers_;  // the current response's block
  std::string body_;
  std::string page_;  // body or error answer, once finished
  std::size_t received_ = 0;
  bool bodyTooLarge_ = false;
  std::int32_t state_ = kStateWaiting;
};

}  // namespace tarnwick::pagefetch

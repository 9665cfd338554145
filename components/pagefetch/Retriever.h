// Asynchronous HTTP retrieval over libcurl's multi interface: the engine
// behind the Tarnwick.PageFetch.1 component. Transfers are keyed by URL; the
// caller starts one, polls its state, reads the answer and finishes it.
//
// States (RetrieveAsyncCompleted):
//   4  waiting for the server: entered as soon as the request is issued, so a
//      caller's time-out applies from the first poll on
//   2  finished with a page (a 2xx answer); the page is the body
//   3  finished with an error answer; the page is "<number> <text>":
//        an HTTP error: the status, and the body or, when the body is empty,
//        the reason phrase ("404 Not Found", "304 Not Modified");
//        a transport failure: 1000 + libcurl's error code (never an HTTP
//        status), and what failed ("1007 Couldn't connect to server: ...")
//   A URL with no transfer reads as state 3 with an empty page.
//
// RetrieveAsyncReceived tells how many bytes of the answer (header lines and
// body, over every response of the transfer) have arrived so far: a caller
// that sees it grow knows the server is still sending, and can bound silence
// rather than the whole transfer.
//
// Every transfer also has limits of its own (connect, total time, body size),
// so one its caller abandons still ends. Proxies come from the usual
// environment variables, as libcurl reads them.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace tarnwick::pagefetch {

inline constexpr std::int32_t kStateWaiting = 4;
inline constexpr std::int32_t kStatePage = 2;
inline constexpr std::int32_t kStateError = 3;
inline constexpr std::int32_t kTransportErrorBase = 1000;

struct RetrieverLimits {
  long connectSeconds = 30;
  long totalSeconds = 300;
  std::size_t maxBodyBytes = 64u << 20;
};

class Retriever {
 public:
  explicit Retriever(RetrieverLimits limits = {});
  ~Retriever();
  Retriever(const Retriever&) = delete;
  Retriever& operator=(const Retriever&) = delete;

  // "ok" when the request was issued, otherwise why not. A transfer already
  // running for the same URL is replaced. `headers` is a block of request
  // header lines, each ended by CR LF.
  std::string RetrieveAsync(const std::string& url, const std::string& agent, const std::string& headers);
  std::string RetrieveAsyncPost(const std::string& url, const std::string& agent, const std::string& headers,
                                const std::string& postData);
  std::int32_t RetrieveAsyncCompleted(const std::string& url);
  // The last response's header block: the status line, then one line per
  // header, separated by CR LF.
  std::string RetrieveAsyncHeaders(const std::string& url);
  std::int32_t RetrieveAsyncPageSize(const std::string& url);
  // Bytes received so far (0 for a URL with no transfer), at most 2^31 - 1.
  std::int32_t RetrieveAsyncReceived(const std::string& url);
  // Copies the page into `buffer`, up to the buffer's size.
  void RetrieveAsyncPage(const std::string& url, std::vector<std::uint8_t>& buffer);
  void RetrieveAsyncFinish(const std::string& url);
  // Blocks until a transfer's socket is ready or `milliseconds` pass: the
  // caller's way to wait without spinning.
  void RetrieveAsyncWait(std::int32_t milliseconds);

 private:
  struct Transfer;
  std::string Start(const std::string& url, const std::string& agent, const std::string& headers,
                    const std::string* postData);
  void Pump();
  Transfer* Find(const std::string& url);

  RetrieverLimits limits_;
  void* multi_;  // CURLM*, kept out of this header
  std::map<std::string, std::unique_ptr<Transfer>> transfers_;
};

}  // namespace tarnwick::pagefetch

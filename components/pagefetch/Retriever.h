// Asynchronous HTTP retrieval: the engine behind the Tarnwick.PageFetch.1
// component. Transfers are keyed by URL; the caller starts one, polls its
// state, reads the answer and finishes it. The states and the page are those
// of Transfer.h; the platform's HTTP client moves the bytes (Transport.h).
//
// RetrieveAsyncReceived tells how many bytes of the answer (header lines and
// body, over every response of the transfer) have arrived so far: a caller
// that sees it grow knows the server is still sending, and can bound silence
// rather than the whole transfer.
//
// Every transfer also has limits of its own (connect, total time, body size),
// so one its caller abandons still ends. Proxies are the platform's: the usual
// environment variables on POSIX, the system's Internet settings on Windows.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "Transfer.h"
#include "Transport.h"

namespace tarnwick::pagefetch {

class Retriever {
 public:
  explicit Retriever(RetrieverLimits limits = {});
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
  // Blocks until a transfer has news or `milliseconds` pass: the caller's way
  // to wait without spinning.
  void RetrieveAsyncWait(std::int32_t milliseconds);

 private:
  std::string Start(const std::string& url, const std::string& agent, const std::string& headers,
                    const std::string* postData);
  Transfer* Find(const std::string& url);

  // Declared first, so it outlives the transfers, which end their requests
  // through it.
  std::unique_ptr<Transport> transport_;
  std::map<std::string, std::unique_ptr<Transfer>> transfers_;
};

}  // namespace tarnwick::pagefetch

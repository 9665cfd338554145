// The platform's HTTP client under the retrieval engine: it issues a
// transfer's request and moves the answer's bytes into its Transfer, which
// decides the state and the page. libcurl's multi interface on POSIX
// (transport_curl.cpp), WinINet in asynchronous mode on Windows
// (transport_wininet.cpp).
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "Transfer.h"

namespace tarnwick::pagefetch {

class Transport {
 public:
  virtual ~Transport() = default;
  // A transfer under way, or null with `why` (a URL the client cannot read, a
  // scheme other than http and https). The transfer ends the request when it
  // is destroyed, whatever its state.
  virtual std::unique_ptr<Transfer> Start(const TransferRequest& request, std::string& why) = 0;
  // Moves every transfer under way as far as the network allows, without
  // blocking.
  virtual void Pump() = 0;
  // Blocks until a transfer has news or `milliseconds` pass.
  virtual void Wait(std::int32_t milliseconds) = 0;
};

std::unique_ptr<Transport> MakeTransport(const RetrieverLimits& limits);

}  // namespace tarnwick::pagefetch

// HTTP dates a client sends (If-Modified-Since), and the listening address
// given on the server's command line. Input: the first byte picks which.
#include "FuzzSupport.h"
#include "server/HttpDate.h"
#include "server/ListenAddress.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarnwick;
  using namespace tarnwick::server;
  if (size == 0) return 0;
  const std::string_view text = fuzz::AsText(data + 1, size - 1);
  if (data[0] % 2 == 0) {
    // Dates of the years 1970 to 9999 read back as they are written.
    const auto seconds = ParseHttpDate(text);
    if (seconds && *seconds >= 0 && *seconds <= 253402300799 && ParseHttpDate(FormatHttpDate(*seconds)) != seconds) {
      fuzz::Broken("a date reads back as it is written", text);
    }
    return 0;
  }
  const auto address = ParseListenAddress(text);
  if (!address) return 0;
  const std::string base = BaseAddress(*address);
  const auto again = ParseListenAddress(std::string_view(base).substr(7));
  if (!again || again->host != address->host || again->port != address->port) {
    fuzz::Broken("an address reads back as it is written", base);
  }
  return 0;
}

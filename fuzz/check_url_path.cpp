// What follows "/check_url/" in a toolbar's request to the server.
#include "FuzzSupport.h"
#include "server/CheckUrlPath.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarnwick;
  const std::string_view rest = fuzz::AsText(data, size);
  const auto question = server::ParseCheckUrlPath(rest);
  if (!question) return 0;
  // The host read is a host the server reads again as itself.
  const auto again = server::ParseCheckUrlPath("http://" + question->host);
  if (!again || again->host != question->host) fuzz::Broken("the host reads back as itself", question->host);
  return 0;
}

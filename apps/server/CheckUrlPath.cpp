#include "server/CheckUrlPath.h"

#include <charconv>

#include "server/HostNames.h"
#include "support/Text.h"

namespace tarnwick::server {

std::optional<CheckUrlQuestion> ParseCheckUrlPath(std::string_view rest) {
  const auto separator = rest.find("://");
  if (separator == std::string_view::npos) return std::nullopt;
  const std::string scheme = LowerAscii(rest.substr(0, separator));
  if (scheme != "http" && scheme != "https" && scheme != "ftp") return std::nullopt;
  rest.remove_prefix(separator + 3);

  const auto slash = rest.find('/');
  const std::string_view authority = rest.substr(0, slash);
  CheckUrlQuestion question{HostOfAuthority(authority), std::nullopt};
  if (question.host.empty() || !HasValidPort(authority)) return std::nullopt;
  if (slash == std::string_view::npos) return question;

  const std::string_view number = rest.substr(slash + 1);
  if (number.empty()) return question;
  std::uint64_t address = 0;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), address);
  if (error != std::errc() || end != number.data() + number.size() || address > 0xFFFFFFFFu) return std::nullopt;
  if (address != 0) question.address = static_cast<std::uint32_t>(address);
  return question;
}

}  // namespace tarnwick::server

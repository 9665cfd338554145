#include "server/ProgramReleases.h"

#include <array>
#include <charconv>
#include <optional>

#include "support/Files.h"

namespace tarnwick::server {
namespace {

using Version = std::array<unsigned, 3>;

// "1.2.3": three numbers of up to five digits.
std::optional<Version> ParseVersion(std::string_view text) {
  Version version{};
  for (std::size_t part = 0; part < version.size(); ++part) {
    const auto dot = part + 1 < version.size() ? text.find('.') : text.size();
    if (dot == std::string_view::npos || dot == 0 || dot > 5) return std::nullopt;
    const auto [end, error] = std::from_chars(text.data(), text.data() + dot, version[part]);
    if (error != std::errc() || end != text.data() + dot) return std::nullopt;
    text.remove_prefix(dot == text.size() ? dot : dot + 1);
  }
  return version;
}

}  // namespace

HttpResponse ProgramReleases::CheckUpdate(std::string_view rest) const {
  if (rest.ends_with(kSignatureSuffix)) {
    return SignatureResponse(CheckUpdate(rest.substr(0, rest.size() - kSignatureSuffix.size())), signer_);
  }
  const auto firstSlash = rest.find('/');
  const auto secondSlash = firstSlash == std::string_view::npos ? firstSlash : rest.find('/', firstSlash + 1);
  if (secondSlash == std::string_view::npos || rest.find('/', secondSlash + 1) != std::string_view::npos) {
    return ErrorResponse(400, "expected /check_update/LABEL/MAJOR.MINOR.REVISION/GUID");
  }
  const auto asked = ParseVersion(rest.substr(firstSlash + 1, secondSlash - firstSlash - 1));
  if (!asked) return ErrorResponse(400, "expected /check_update/LABEL/MAJOR.MINOR.REVISION/GUID");

  std::optional<Version> newest;
  std::filesystem::path newestFile;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(folder_, error)) {
    const auto version = ParseVersion(entry.path().filename().string());
    const auto file = entry.path() / kProgramFileName;
    if (!version || *version <= *asked || (newest && *version <= *newest) || !FileExists(file)) continue;
    newest = version;
    newestFile = file;
  }
  if (!newest) return ErrorResponse(404, "no newer version");
  HttpResponse response;
  response.contentType = "application/octet-stream";
  response.body = ReadFile(log_, newestFile);
  return response;
}

}  // namespace tarnwick::server

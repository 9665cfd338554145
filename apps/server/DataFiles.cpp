#include "server/DataFiles.h"

#include <chrono>

#include "server/HttpDate.h"
#include "server/QueryString.h"
#include "support/CMD5.h"
#include "support/Files.h"
#include "support/Text.h"

namespace tarnwick::server {
namespace {

// A plain file name: no folder part, nothing hidden, nothing a file system
// would read as a device, drive or parent.
bool IsPlainFileName(std::string_view name) {
  if (name.empty() || name.size() > 255 || name.front() == '.') return false;
  for (const char c : name) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7F || c == '/' || c == '\\' || c == ':') return false;
  }
  return true;
}

bool IsComponent(std::string_view name) {
  return name.size() > 4 && EqualsIgnoreCase(name.substr(name.size() - 4), ".dll");
}

}  // namespace

std::optional<std::pair<std::filesystem::path, DataFiles::Stamp>> DataFiles::Published(std::string_view name) const {
  if (!IsPlainFileName(name)) return std::nullopt;
  std::filesystem::path path = folder_ / std::string(name);
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) return std::nullopt;
  const auto modified = std::filesystem::last_write_time(path, error);
  const auto size = std::filesystem::file_size(path, error);
  if (error) return std::nullopt;
  return std::pair{std::move(path), Stamp{modified, size}};
}

HttpResponse DataFiles::Update(std::string_view encodedName, std::string_view ifModifiedSince) const {
  if (encodedName.ends_with(kSignatureSuffix)) {
    return SignatureResponse(Update(encodedName.substr(0, encodedName.size() - kSignatureSuffix.size()), {}), signer_);
  }
  const auto file = Published(PercentDecode(encodedName));
  if (!file) return ErrorResponse(404, "no such file");
  const auto& [path, stamp] = *file;
  const std::int64_t modified =
      std::chrono::time_point_cast<std::chrono::seconds>(std::chrono::file_clock::to_sys(stamp.modified))
          .time_since_epoch()
          .count();
  HttpResponse response;
  response.contentType = "application/octet-stream";
  response.headers.emplace_back("Last-Modified", FormatHttpDate(modified));
  if (const auto since = ParseHttpDate(ifModifiedSince); since && *since >= modified) {
    response.status = 304;
    return response;
  }
  response.body = ReadFile(log_, path);
  return response;
}

std::string DataFiles::HashOf(std::string_view name) const {
  const auto file = Published(name);
  if (!file) return {};
  const auto& [path, stamp] = *file;
  const std::string key(name);
  {
    std::lock_guard lock(cacheMutex_);
    const auto cached = hashes_.find(key);
    if (cached != hashes_.end() && cached->second.stamp == stamp) {
      return cached->second.hash;
    }
  }
  const CMD5 md5;
  std::string hash =
      UpperAscii(IsComponent(name) ? md5.MD5Byte(ReadBinaryFile(log_, path)) : md5.MD5(ReadFile(log_, path)));
  std::lock_guard lock(cacheMutex_);
  hashes_[key] = CachedHash{stamp, hash};
  return hash;
}

HttpResponse DataFiles::FileHashes(std::string_view query) const {
  HttpResponse response;
  for (const auto& [key, name] : ParseQuery(query)) {
    if (key.size() <= 4 || key.compare(0, 4, "file") != 0 ||
        key.find_first_not_of("0123456789", 4) != std::string::npos) {
      continue;
    }
    const std::string hash = HashOf(name);
    if (!hash.empty()) response.body += name + "=" + hash + "\r\n";
  }
  return response;
}

}  // namespace tarnwick::server

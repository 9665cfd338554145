#include "server/UpdateSigning.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>

#include "support/Files.h"

namespace tarnwick::server {
namespace {

// Creates `path` with `mode`, failing when it exists, and writes `text`.
bool CreateKeyFile(const std::filesystem::path& path, const std::string& text, mode_t mode, std::string& error) {
  const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
  bool written = fd >= 0 && ::write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size());
  written = written && ::fsync(fd) == 0;
  if (!written) error = path.string() + ": " + std::strerror(errno);
  if (fd >= 0) ::close(fd);
  if (fd >= 0 && !written) ::unlink(path.c_str());
  return written;
}

}  // namespace

std::optional<UpdateSigner> UpdateSigner::Load(const std::filesystem::path& file, std::string& error) {
  if (!FileExists(file)) {
    error = "no update signing key file " + file.string();
    return std::nullopt;
  }
  const auto key = ReadSecretKeyFile(file);
  if (!key) {
    error = file.string() + " holds no update signing key (128 hex digits, as tarnwick-server keygen writes)";
    return std::nullopt;
  }
  return UpdateSigner(*key);
}

std::string UpdateSigner::PublicKeyHex() const { return KeyToHex(std::span(key_).subspan(32)); }

HttpResponse SignatureResponse(const HttpResponse& unsignedAnswer, const UpdateSigner* signer) {
  if (signer == nullptr) return ErrorResponse(404, "this server signs no updates");
  if (unsignedAnswer.status != 200) return unsignedAnswer;
  HttpResponse response;
  response.contentType = "application/octet-stream";
  response.body = signer->Sign(unsignedAnswer.body);
  return response;
}

std::optional<std::string> WriteKeyPair(const std::filesystem::path& folder, std::string& error) {
  std::error_code created;
  std::filesystem::create_directories(folder, created);
  const auto secretFile = folder / kSecretKeyFileName;
  const auto publicFile = folder / kPublicKeyFileName;
  for (const auto& file : {secretFile, publicFile}) {
    if (std::filesystem::exists(file, created)) {
      error = file.string() + " already exists: move it away first";
      return std::nullopt;
    }
  }
  auto pair = MakeKeyPair();
  if (!pair) {
    error = "libsodium could not start";
    return std::nullopt;
  }
  const std::string publicHex = KeyToHex(pair->publicKey);
  bool written = CreateKeyFile(secretFile, KeyToHex(pair->secretKey) + "\n", 0600, error);
  pair->secretKey.fill(0);
  if (written && !CreateKeyFile(publicFile, publicHex + "\n", 0644, error)) {
    ::unlink(secretFile.c_str());  // half a pair is no pair
    written = false;
  }
  if (!written) return std::nullopt;
  return publicHex;
}

}  // namespace tarnwick::server

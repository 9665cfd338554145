// Signatures on what the server publishes as updates: every file under
// /updates/ and every program release offered at /check_update gets an
// Ed25519 detached signature, served at the same path + ".sig". The toolbar
// installs no program or component whose signature does not verify against
// the public half of the key.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "server/HttpTypes.h"
#include "support/Signatures.h"

namespace tarnwick::server {

inline constexpr std::string_view kSignatureSuffix = ".sig";
// The key pair's file names; the secret one is looked for in the data
// folder's server/ folder unless serve names another.
inline constexpr const char* kSecretKeyFileName = "update-signing.key";
inline constexpr const char* kPublicKeyFileName = "update-signing.pub";

class UpdateSigner {
 public:
  // The secret key written as hex in `file`; nullopt, with the reason in
  // `error`, when the file cannot be read or holds no key.
  static std::optional<UpdateSigner> Load(const std::filesystem::path& file, std::string& error);

  // The 64-byte detached signature of `content`.
  std::string Sign(std::string_view content) const { return SignDetached(content, key_); }
  // The public half, as hex.
  std::string PublicKeyHex() const;

 private:
  explicit UpdateSigner(const SecretKey& key) : key_(key) {}
  SecretKey key_;
};

// The answer for "PATH.sig", given the answer `unsigned` that PATH gets: the
// signature of its body when that is a 200, its error otherwise, and 404 when
// the server has no key.
HttpResponse SignatureResponse(const HttpResponse& unsignedAnswer, const UpdateSigner* signer);

// Writes a fresh key pair to `folder` (created when missing):
// update-signing.key (the secret key, readable by its owner only) and
// update-signing.pub. Never replaces a key file that exists. The public key
// as hex, or nullopt with the reason in `error`.
std::optional<std::string> WriteKeyPair(const std::filesystem::path& folder, std::string& error);

}  // namespace tarnwick::server

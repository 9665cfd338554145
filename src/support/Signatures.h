// Ed25519 detached signatures over libsodium: how a program or component
// update proves that it comes from the holder of the publisher's secret key.
// Keys travel as hex text, one key per file.
#pragma once

#include <array>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tarnwick {

inline constexpr std::size_t kSignatureBytes = 64;
using PublicKey = std::array<unsigned char, 32>;
// libsodium's form: the 32-byte seed followed by the public key.
using SecretKey = std::array<unsigned char, 64>;

struct KeyPair {
  PublicKey publicKey;
  SecretKey secretKey;
};

// A fresh key pair from the system's random source; nullopt when the
// library cannot start.
std::optional<KeyPair> MakeKeyPair();
// The 64-byte detached signature of `content`.
std::string SignDetached(std::string_view content, const SecretKey& key);
// True only for a signature of exactly 64 bytes made over `content` with the
// secret half of `key`.
bool VerifyDetached(std::string_view content, std::string_view signature, const PublicKey& key);

// Lower-case hex digits without separators.
std::string KeyToHex(std::span<const unsigned char> key);
// The key written as hex (either case; blanks and line ends around it are
// ignored); nullopt for anything else. A secret key must also carry the
// public key that its seed gives.
std::optional<PublicKey> PublicKeyFromHex(std::string_view hex);
std::optional<SecretKey> SecretKeyFromHex(std::string_view hex);
// The key in a key file, of which no more is read than a key needs: nullopt
// for a file that is missing, no regular file, or holds anything else.
std::optional<PublicKey> ReadPublicKeyFile(const std::filesystem::path& file);
std::optional<SecretKey> ReadSecretKeyFile(const std::filesystem::path& file);

}  // namespace tarnwick

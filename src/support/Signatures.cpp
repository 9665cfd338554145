#include "support/Signatures.h"

#include <sodium.h>

#include <algorithm>
#include <fstream>
#include <system_error>

namespace tarnwick {
namespace {

bool Ready() { return sodium_init() >= 0; }

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const auto first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

template <std::size_t N>
std::optional<std::array<unsigned char, N>> FromHex(std::string_view hex) {
  hex = Trimmed(hex);
  std::array<unsigned char, N> key{};
  std::size_t length = 0;
  const char* end = nullptr;
  if (hex.size() != 2 * N ||
      sodium_hex2bin(key.data(), key.size(), hex.data(), hex.size(), nullptr, &length, &end) != 0 || length != N ||
      end != hex.data() + hex.size()) {
    return std::nullopt;
  }
  return key;
}

// The start of a key file: enough for the longest key with blanks around it.
std::string KeyFileText(const std::filesystem::path& file) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(file, error)) return {};
  std::ifstream in(file, std::ios::binary);
  std::string text(256, '\0');
  in.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<std::size_t>(std::max<std::streamsize>(in.gcount(), 0)));
  return text;
}

}  // namespace

std::optional<KeyPair> MakeKeyPair() {
  if (!Ready()) return std::nullopt;
  KeyPair pair{};
  crypto_sign_ed25519_keypair(pair.publicKey.data(), pair.secretKey.data());
  return pair;
}

std::string SignDetached(std::string_view content, const SecretKey& key) {
  std::string signature(kSignatureBytes, '\0');
  if (!Ready()) return {};
  crypto_sign_ed25519_detached(reinterpret_cast<unsigned char*>(signature.data()), nullptr,
                               reinterpret_cast<const unsigned char*>(content.data()), content.size(), key.data());
  return signature;
}

bool VerifyDetached(std::string_view content, std::string_view signature, const PublicKey& key) {
  if (signature.size() != kSignatureBytes || !Ready()) return false;
  return crypto_sign_ed25519_verify_detached(reinterpret_cast<const unsigned char*>(signature.data()),
                                             reinterpret_cast<const unsigned char*>(content.data()), content.size(),
                                             key.data()) == 0;
}

std::string KeyToHex(std::span<const unsigned char> key) {
  std::string hex(key.size() * 2 + 1, '\0');
  sodium_bin2hex(hex.data(), hex.size(), key.data(), key.size());
  hex.pop_back();
  return hex;
}

std::optional<PublicKey> PublicKeyFromHex(std::string_view hex) { return FromHex<32>(hex); }

std::optional<SecretKey> SecretKeyFromHex(std::string_view hex) {
  auto key = FromHex<64>(hex);
  if (!key || !Ready()) return std::nullopt;
  PublicKey derived{};
  SecretKey rebuilt{};
  crypto_sign_ed25519_seed_keypair(derived.data(), rebuilt.data(), key->data());
  const bool consistent = std::equal(derived.begin(), derived.end(), key->begin() + 32);
  sodium_memzero(rebuilt.data(), rebuilt.size());
  if (!consistent) return std::nullopt;
  return key;
}

std::optional<PublicKey> ReadPublicKeyFile(const std::filesystem::path& file) {
  return PublicKeyFromHex(KeyFileText(file));
}

std::optional<SecretKey> ReadSecretKeyFile(const std::filesystem::path& file) {
  return SecretKeyFromHex(KeyFileText(file));
}

}  // namespace tarnwick

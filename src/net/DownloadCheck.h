// What a downloaded file must prove before it may replace a file in the
// program folder. A file served under /updates/ must have the MD5 that this
// start's hash list published for its name. Code (a .dll, or a pending .new
// such as pagefetch.new or twtb.new) must also carry an Ed25519 signature by
// the update key, served at the same URL + ".sig".
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "settings/SettingsStore.h"
#include "support/Signatures.h"

namespace tarnwick {

// The settings value naming a file that holds the update key as hex text; the
// built-in key is used while it is absent or empty.
inline constexpr std::string_view kUpdatePublicKeyFileSetting = "UpdatePublicKeyFile";

// The name a download is listed under in the hash list: what follows the
// server's "/updates/" in `url`; empty for any other URL.
std::string PublishedName(std::string_view url, std::string_view server);
// True for a ".dll" or ".new" file (any case): installed only when signed.
bool IsCodeFile(std::string_view fileName);
// True for a name the hash list hashes over its bytes: a ".dll" (any case),
// as the server does.
bool HashedAsBytes(std::string_view publishedName);
// The upper-case MD5 the hash list holds for content of that kind: over the
// raw bytes when `asBytes` (the components), over the text otherwise.
std::string ContentHash(std::string_view content, bool asBytes);
// The key updates must be signed with: the one in the file the setting
// names, or the built-in one. nullopt, with the reason in `why`, when the
// named file holds no key.
std::optional<PublicKey> UpdatePublicKey(SettingsStore& settings, std::string& why);

}  // namespace tarnwick

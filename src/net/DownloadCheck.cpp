#include "net/DownloadCheck.h"

#include <vector>

#include "UpdatePublicKey.h"
#include "settings/mdlRegistry.h"
#include "support/CMD5.h"
#include "support/Text.h"

namespace tarnwick {

std::string PublishedName(std::string_view url, std::string_view server) {
  const std::string prefix = std::string(server) + "/updates/";
  return url.starts_with(prefix) ? std::string(url.substr(prefix.size())) : std::string();
}

bool IsCodeFile(std::string_view fileName) {
  const std::string name = LowerAscii(fileName);
  return name.ends_with(".dll") || name.ends_with(".new");
}

bool HashedAsBytes(std::string_view publishedName) { return LowerAscii(publishedName).ends_with(".dll"); }

std::string ContentHash(std::string_view content, bool asBytes) {
  const CMD5 md5;
  if (!asBytes) return UpperAscii(md5.MD5(content));
  const std::vector<std::uint8_t> bytes(content.begin(), content.end());
  return UpperAscii(md5.MD5Byte(bytes));
}

std::optional<PublicKey> UpdatePublicKey(SettingsStore& settings, std::string& why) {
  const std::string file =
      ToText(mdlRegistry::GetSetting(settings, mdlRegistry::kSettingsKey, kUpdatePublicKeyFileSetting, std::string()));
  if (file.empty()) return PublicKeyFromHex(product::kUpdatePublicKey);
  auto key = ReadPublicKeyFile(file);
  if (!key) why = "the update key file " + file + " holds no public key";
  return key;
}

}  // namespace tarnwick

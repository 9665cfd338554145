// MD5 message digest (RFC 1321). Its one use is comparing local files with the
// hash list the toolbar server publishes, so the text form's byte mapping and
// the letter case of the result matter: the server hashes through this class.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick {

class CMD5 {
 public:
  // 32 lower-case hex digits of the digest of a Windows-1252 text, each
  // character contributing the low 8 bits of its UTF-16 code unit.
  std::string MD5(std::string_view text) const;
  // 32 lower-case hex digits of the digest of raw bytes.
  std::string MD5Byte(std::span<const std::uint8_t> bytes) const;
  // The 16 digest bytes of a text, mapped as MD5() maps it.
  std::vector<std::uint8_t> RawMD5(std::string_view text) const;
};

}  // namespace tarnwick

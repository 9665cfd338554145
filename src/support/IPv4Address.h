// IPv4 addresses as the sockets library's address parser reads them, the one
// parser behind name resolution and the security zone, so that both always
// agree on which hosts are addresses.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tarnwick {

using IPv4Bytes = std::array<std::uint8_t, 4>;  // first byte most significant

// One to four numbers separated by dots, each decimal, octal (a leading 0) or
// hexadecimal (0x); the last number fills the bytes the others leave, so
// "134744072", "0x08080808", "8.526344" and "010.010.010.010" are all 8.8.8.8.
// A blank after the address ends it, and what follows is ignored, as
// inet_aton does. nullopt when the text is no address.
std::optional<IPv4Bytes> ParseIPv4Address(std::string_view text);

// "a.b.c.d" in decimal.
std::string DottedAddress(const IPv4Bytes& address);

}  // namespace tarnwick

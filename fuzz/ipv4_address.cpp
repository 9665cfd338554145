// The address parser behind the security zone and name resolution must read
// hosts as the system's own parser, inet_aton, does.
#include <arpa/inet.h>

#include <cstring>

#include "FuzzSupport.h"
#include "support/IPv4Address.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarnwick;
  const std::string text(fuzz::AsText(data, size));
  const auto ours = ParseIPv4Address(text);
  in_addr system{};
  const bool systemReads = inet_aton(text.c_str(), &system) != 0;
  if (ours.has_value() != systemReads) fuzz::Broken("an address exactly when inet_aton reads one", text);
  if (ours && std::memcmp(ours->data(), &system.s_addr, 4) != 0) fuzz::Broken("the address inet_aton reads", text);
  if (ours && ParseIPv4Address(DottedAddress(*ours)) != ours) fuzz::Broken("dotted form reads back", text);
  return 0;
}

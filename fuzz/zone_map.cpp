// The security zone of a URL under zone lists from the settings. Input: the
// URL, then the trusted, intranet and restricted lists, one a line.
#include "FuzzSupport.h"
#include "ZoneMap.h"
#include "support/Text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarnwick;
  using namespace tarnwick::pagefetch;
  std::vector<std::string> lines = Split(fuzz::AsText(data, size), "\n");
  lines.resize(4);
  const std::string& url = lines[0];
  const ZoneLists lists{lines[1], lines[2], lines[3]};

  const std::int32_t zone = MapZone(url, lists);
  if (zone < kZoneLocalMachine || zone > kZoneRestricted) fuzz::Broken("a zone number", url);
  const std::int32_t unlisted = MapZone(url, {});
  if (unlisted == kZoneTrusted || unlisted == kZoneRestricted) fuzz::Broken("only lists make sites trusted", url);
  if (MapZone(url, {"", "", lists.restricted}) == kZoneRestricted && zone != kZoneRestricted) {
    fuzz::Broken("the restricted list wins", url);
  }
  return 0;
}

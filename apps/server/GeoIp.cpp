#include "server/GeoIp.h"

#include <GeoIP.h>

#include "server/HostNames.h"

namespace tarnwick::server {

GeoIpDatabase::GeoIpDatabase(const std::filesystem::path& file)
    : database_(GeoIP_open(file.c_str(), GEOIP_MEMORY_CACHE | GEOIP_SILENCE)) {}

GeoIpDatabase::~GeoIpDatabase() {
  if (database_ != nullptr) GeoIP_delete(database_);
}

Country GeoIpDatabase::CountryOf(std::uint32_t address) const {
  if (database_ == nullptr || IsPrivateAddress(address)) return {};
  GeoIPLookup lookup{};
  const int id = GeoIP_id_by_ipnum_gl(database_, address, &lookup);
  const char* code = id > 0 ? GeoIP_code_by_id(id) : nullptr;
  const char* name = id > 0 ? GeoIP_name_by_id(id) : nullptr;
  if (code == nullptr || name == nullptr) return {};
  const std::string_view codeText(code);
  const bool twoLetters =
      codeText.size() == 2 && codeText[0] >= 'A' && codeText[0] <= 'Z' && codeText[1] >= 'A' && codeText[1] <= 'Z';
  return twoLetters ? Country{codeText, name} : Country{};
}

}  // namespace tarnwick::server

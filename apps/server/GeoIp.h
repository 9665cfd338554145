// The hosting country of an IPv4 address, from the legacy GeoIP country
// database Debian ships (geoip-database).
#pragma once

#include <cstdint>
#include <filesystem>
#include <string_view>

typedef struct GeoIPTag GeoIP;

namespace tarnwick::server {

inline constexpr const char* kDefaultGeoIpDatabase = "/usr/share/GeoIP/GeoIP.dat";

struct Country {
  std::string_view code;  // two upper-case letters; empty when unknown
  std::string_view name;
};

class GeoIpDatabase {
 public:
  // Loads the database into memory; without it every country is unknown.
  explicit GeoIpDatabase(const std::filesystem::path& file = kDefaultGeoIpDatabase);
  ~GeoIpDatabase();
  GeoIpDatabase(const GeoIpDatabase&) = delete;
  GeoIpDatabase& operator=(const GeoIpDatabase&) = delete;

  bool loaded() const { return database_ != nullptr; }
  // Unknown for private and special-use addresses, for addresses the
  // database does not place in a country, and for its pseudo-countries
  // (anonymous proxies, satellite providers).
  Country CountryOf(std::uint32_t address) const;

 private:
  GeoIP* database_ = nullptr;
};

}  // namespace tarnwick::server

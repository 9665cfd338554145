// The whole toolbar server, assembled: storage, index and its reloader, the
// services behind the paths, and the HTTP front.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "server/GeoIp.h"
#include "server/HttpFront.h"

namespace tarnwick::server {

// Where the risk rating's configuration lives in the data folder.
inline constexpr const char* kRiskConfigFile = "server/risk.conf";
// Where newer program versions are published in the data folder.
inline constexpr const char* kReleasesFolder = "releases";

struct ServerSettings {
  ListenAddress listen{"127.0.0.1", 8750};
  std::filesystem::path database;
  std::filesystem::path dataFolder;
  std::filesystem::path geoIpDatabase = kDefaultGeoIpDatabase;
  // The secret key that signs updates; empty: server/update-signing.key in
  // the data folder, when it exists (without one, nothing is signed).
  std::filesystem::path signingKey;
  std::chrono::milliseconds reloadInterval{1000};
};

class Server {
 public:
  // Progress and trouble while running, one line at a time.
  using Reporter = std::function<void(const std::string&)>;

  // Opens everything and starts answering; nothing, with the reason in
  // `error`, when something cannot be opened.
  static std::unique_ptr<Server> Start(const ServerSettings& settings, Reporter report, std::string& error);
  virtual ~Server() = default;

  // "http://127.0.0.1:PORT": the base address the server answers on.
  virtual std::string Address() const = 0;
  // Rebuilds the index from the storage at once.
  virtual void Reload() = 0;
};

}  // namespace tarnwick::server

#include "server/Server.h"

#include <stdexcept>

#include "server/DataFiles.h"
#include "server/IndexReloader.h"
#include "server/ProgramReleases.h"
#include "server/ReportPages.h"
#include "server/Router.h"
#include "server/UpdateSigning.h"
#include "server/Verdicts.h"
#include "support/Clock.h"
#include "support/Log.h"
#include "support/Paths.h"

namespace tarnwick::server {
namespace {

RiskModel LoadRiskModel(const std::filesystem::path& dataFolder) {
  std::string error;
  auto config = ReadRiskConfig(dataFolder / kRiskConfigFile, error);
  if (!config) throw std::runtime_error(error);
  PopularityList popularity;
  if (!config->popularityList.empty()) {
    auto list = PopularityList::Read(config->popularityList, error);
    if (!list) throw std::runtime_error(error);
    popularity = std::move(*list);
  }
  return RiskModel(std::move(*config), std::move(popularity));
}

// The key named in the settings (which must be there), else the data
// folder's own, else none.
std::optional<UpdateSigner> LoadSigner(const ServerSettings& settings, const Server::Reporter& report) {
  const bool named = !settings.signingKey.empty();
  const auto file = named ? settings.signingKey : settings.dataFolder / "server" / kSecretKeyFileName;
  std::error_code error;
  if (!named && !std::filesystem::exists(file, error)) {
    report("no update signing key at " + file.string() + ": updates are served unsigned (every .sig answers 404)");
    return std::nullopt;
  }
  std::string why;
  auto signer = UpdateSigner::Load(file, why);
  if (!signer) throw std::runtime_error(why);
  report("signing updates with " + file.string() + " (public key " + signer->PublicKeyHex() + ")");
  return signer;
}

class RunningServer final : public Server {
 public:
  RunningServer(const ServerSettings& settings, const Reporter& report)
      : risk_(LoadRiskModel(settings.dataFolder)),
        geoIp_(settings.geoIpDatabase),
        storage_(OpenSqliteStorage(settings.database)),
        live_(PhishIndex::Load(*storage_)),
        reloader_(OpenSqliteStorage(settings.database), live_, observations_, settings.reloadInterval, report),
        signer_(LoadSigner(settings, report)),
        files_(settings.dataFolder, log_, signer_ ? &*signer_ : nullptr),
        releases_(settings.dataFolder / kReleasesFolder, log_, signer_ ? &*signer_ : nullptr),
        pages_(*storage_, risk_.config()),
        verdicts_(live_, observations_, risk_, geoIp_),
        router_(verdicts_, files_, releases_, pages_, address_),
        front_([this](const HttpRequest& request) { return router_.Handle(request); }) {
    observations_.LoadSeen(*storage_);
    report("index loaded: " + live_.Current()->Describe());
    if (!geoIp_.loaded()) report("no GeoIP database at " + settings.geoIpDatabase.string() + ": countries unknown");
  }

  bool Listen(const ServerSettings& settings, std::string& error) {
    if (!front_.Listen(settings.listen, error)) return false;
    address_ = BaseAddress({settings.listen.host, front_.Port()});
    return front_.Serve(error);
  }

  std::string Address() const override { return address_; }
  void Reload() override { reloader_.RequestReload(); }

 private:
  std::unique_ptr<Paths> paths_ = MakePlatformPaths();
  std::unique_ptr<Clock> clock_ = MakeSystemClock();
  bool debugLog_ = false;
  Log log_{*paths_, *clock_, debugLog_};
  RiskModel risk_;
  GeoIpDatabase geoIp_;
  std::unique_ptr<Storage> storage_;
  Observations observations_;
  LiveIndex live_;
  IndexReloader reloader_;
  std::optional<UpdateSigner> signer_;
  DataFiles files_;
  ProgramReleases releases_;
  ReportPages pages_;
  Verdicts verdicts_;
  std::string address_;
  Router router_;
  HttpFront front_;
};

}  // namespace

std::unique_ptr<Server> Server::Start(const ServerSettings& settings, Reporter report, std::string& error) {
  try {
    auto server = std::make_unique<RunningServer>(settings, std::move(report));
    if (!server->Listen(settings, error)) return nullptr;
    return server;
  } catch (const std::exception& failure) {
    error = failure.what();
    return nullptr;
  }
}

}  // namespace tarnwick::server

#include "net/mdlUpdate.h"

#include <cmath>
#include <system_error>

#include "ProductInfo.h"
#include "net/DownloadCheck.h"
#include "net/FileHashList.h"
#include "settings/mdlRegistry.h"
#include "support/DateTime.h"
#include "support/Files.h"
#include "support/RoutineError.h"
#include "support/SwapFiles.h"
#include "support/Text.h"
#include "support/Version.h"

namespace tarnwick {
namespace {

using mdlRegistry::kSettingsKey;

constexpr std::string_view kEpochLastModified = "Thu, 1 Jan 1970 00:00:00 GMT";
// Each menu file keeps the Last-Modified of its own last fetch.
constexpr std::string_view kTarnwickMenuLastModifiedKey = "Software\\Tarnwick\\Toolbar\\Settings\\Menus\\tarnwick.xml";
constexpr std::string_view kMenuLastModifiedKey = "Software\\Tarnwick\\Toolbar\\Settings\\Menus\\menu.xml";
constexpr std::string_view kLogoLastModifiedKey = "Software\\Tarnwick\\Toolbar\\Settings\\Menus\\logo.bmp";

double NowSeconds(Clock& clock) { return std::nearbyint(clock.Now() * kSecondsPerDay); }

std::string Number(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.0f", value);
  return text;
}

// The first label of the server's host: "http://toolbar.example.com" -> "toolbar".
std::string ServerLabel(std::string_view server) {
  const auto start = server.find("://");
  if (start == std::string_view::npos) return {};
  const std::string_view host = server.substr(start + 3);
  return std::string(host.substr(0, host.find('.')));
}

}  // namespace

const std::vector<std::string_view>& HashListFiles() {
  static const std::vector<std::string_view> files = {"localblock.dat", "tarnwick.xml",    "menu.xml",     "logo.bmp",
                                                      "xss.dat",        "tarnwickrex.dll", "pagefetch.dll"};
  return files;
}

const std::vector<RefreshEntry>& StartupRefreshTable() {
  static const std::vector<RefreshEntry> table = {
      {"localblock.dat", "localblock.dat", "LastCheckedLBF", 0, false, false, {}, false},
      {"xss.dat", "xss.dat", "LastCheckedXSS", 0, false, false, {}, false},
      {"pagefetch.dll", "pagefetch.new", "LastCheckedPageFetch", 0, false, false, {}, true},
      {"tarnwickrex.dll", "tarnwickrex.dll", "LastCheckedTarnwickRex", 0, false, true, {}, true},
  };
  return table;
}

const std::vector<RefreshEntry>& MenuRefreshTable() {
  static const std::vector<RefreshEntry> table = {
      {"tarnwick.xml", "tarnwick.xml", "LastCheckedTarnwickMenu", 0, false, false, kTarnwickMenuLastModifiedKey, false},
      {"menu.xml", "menu.xml", "LastCheckedMenu", 0, false, false, kMenuLastModifiedKey, false},
      {"logo.bmp", "logo.bmp", "LastCheckedLogo", 0, false, false, kLogoLastModifiedKey, false},
  };
  return table;
}

namespace {

VersionedFile PageFetchFiles(NetPorts& ports) {
  return VersionedFile::In(ports.paths.ProgramFolder(), "pagefetch.dll");
}

// "Deleted pagefetch.old", "Renamed pagefetch.dll to pagefetch.old".
std::string Describe(const SwapStep& step) {
  if (step.to.empty()) return "Deleted " + step.from.filename().string();
  return "Renamed " + step.from.filename().string() + " to " + step.to.filename().string();
}

void ReportSwapFailure(NetPorts& ports, const SwapFailure& failure) {
  ports.log.DebugLog("Unrecoverable error occurred while creating pagefetch object: " + Describe(failure.step) +
                     " failed: " + failure.error.message() + " (" + std::to_string(failure.error.value()) + ")");
}

}  // namespace

void RecoverPageFetchSwap(NetPorts& ports) {
  const auto failure = RecoverSwap(PageFetchFiles(ports), [&ports](const SwapStep& step) {
    ports.log.WriteLog("Repaired an interrupted swap of pagefetch.dll: " + Describe(step));
  });
  if (failure) ReportSwapFailure(ports, *failure);
}

void SwapPageFetch(NetPorts& ports) {
  const VersionedFile files = PageFetchFiles(ports);
  if (!FileExists(files.pending)) return;
  const auto failure = SwapInPending(files, [&ports](const SwapStep& step) { ports.log.DebugLog(Describe(step)); });
  if (failure) ReportSwapFailure(ports, *failure);
}

mdlUpdate::mdlUpdate(NetPorts ports, frmHTTP& http, Shell& shell) : ports_(ports), http_(http), shell_(shell) {}

double mdlUpdate::SecondsSinceLastChecked(std::string_view Name) {
  double stored = 0;
  try {
    // Seconds since 1899 outgrow 32 bits: the stamp is read as a double.
    stored = ToDouble(mdlRegistry::GetSetting(ports_.settings, kSettingsKey, Name, 0));
  } catch (const ConversionError&) {
    stored = 0;
  }
  return NowSeconds(ports_.clock) - stored;
}

void mdlUpdate::SetLastChecked(std::string_view Name) {
  mdlRegistry::SaveSetting(ports_.settings, kSettingsKey, Name, Number(NowSeconds(ports_.clock)), kRegSz);
}

std::int16_t mdlUpdate::UpdateLocalFile(bool ShowDialog, std::string_view URL, std::string_view FileName,
                                        std::string_view LastCheckedName, std::int32_t Interval, std::string_view Agent,
                                        std::string_view LastModifiedKey, bool Forced, std::string_view Caption) {
  Log& log = ports_.log;
  std::int16_t result = 0;
  const std::string name(FileName);
  try {
    const double seconds = SecondsSinceLastChecked(LastCheckedName);
    log.DebugLog("(UpdateLocalFile) " + Number(seconds) + " seconds since " + name + " last updated (interval is " +
                 std::to_string(Interval) + ")...");
    std::string headers;
    if (!Forced) {
      log.DebugLog("(UpdateLocalFile) Update is not forced");
      if (seconds < Interval) {
        log.DebugLog("(UpdateLocalFile) Update interval is not due");
        if (FileExists(ports_.paths.ProgramFolder() / name) || name == "pagefetch.new" || name == "twtb.new") {
          log.DebugLog("(UpdateLocalFile) NOT updating");
          return 0;
        }
      }
      if (!LastModifiedKey.empty()) {
        const std::string since = ToText(
            mdlRegistry::GetSetting(ports_.settings, LastModifiedKey, "LastModified", std::string(kEpochLastModified)));
        headers = "If-Modified-Since: " + since + "\r\n";
      }
    }
    log.DebugLog("(UpdateLocalFile) Updating now");
    http_.Start_Download(ShowDialog, "GET", URL, Agent, headers, "", Caption);
    result = http_.HTTPStatus;
    if (result == 304 || result == 404) SetLastChecked(LastCheckedName);
    if (result == 200) {
      // Fetching the signature reuses the form: keep what this answer brought.
      const std::string content = http_.ResponseText;
      const std::string lastModified = http_.GetHeader("Last-Modified");
      // A file that does not prove itself is no completed check: the next
      // start asks again.
      if (AcceptDownload(URL, name, Agent, content)) {
        SetLastChecked(LastCheckedName);
        result = InstallDownload(URL, name, content, LastModifiedKey, lastModified);
      } else {
        result = 0;
      }
    } else {
      log.DebugLog("Failed to download " + name + " (" + std::to_string(result) + ": " + http_.ResponseText + ")");
    }
  } catch (const std::exception& error) {
    const std::string text = "Failed to update file (" + name + "): " + DescribeError(error);
    log.WriteLog(text);
    if (ports_.options.Debug) {
      ports_.ui.MessageBox(text, std::string(product::kFileDescription) + " Debugging", vbExclamation);
    }
  }
  http_.Stop_Animation();
  return result;
}

std::int16_t mdlUpdate::InstallDownload(std::string_view URL, const std::string& name, const std::string& content,
                                        std::string_view LastModifiedKey, const std::string& lastModified) {
  const auto path = ports_.paths.ProgramFolder() / name;
  if (!WriteFile(ports_.log, path, content)) {
    ports_.log.DebugLog("(UpdateLocalFile) Failed to write " + path.string());
    return 0;
  }
  ports_.log.WriteLog("Downloaded " + name + " from " + std::string(URL));
  if (!LastModifiedKey.empty()) {
    mdlRegistry::SaveSetting(ports_.settings, LastModifiedKey, "LastModified", lastModified, kRegSz);
  }
  return 200;
}

bool mdlUpdate::AcceptDownload(std::string_view URL, const std::string& name, std::string_view Agent,
                               const std::string& content) {
  const auto discard = [&](const std::string& why) {
    ports_.log.WriteLog("(UpdateLocalFile) Discarded " + name + " from " + std::string(URL) + ": " + why);
    return false;
  };
  const std::string published = PublishedName(URL, ports_.endpoints.server);
  const bool code = IsCodeFile(name);
  if (published.empty() && !code) return discard("nothing to check it against");
  if (!published.empty()) {
    const auto listed = FileHashes.find(published);
    if (listed == FileHashes.end()) return discard("the server published no hash for " + published);
    const std::string hash = ContentHash(content, HashedAsBytes(published));
    if (hash != listed->second) return discard("its MD5 " + hash + " is not the published " + listed->second);
  }
  if (!code) return true;
  std::string why;
  const auto key = UpdatePublicKey(ports_.settings, why);
  if (!key) return discard(why);
  http_.Start_Download(false, "GET", std::string(URL) + ".sig", Agent, "", "", "");
  if (http_.HTTPStatus != 200) {
    return discard("no signature (" + std::to_string(http_.HTTPStatus) + ": " + http_.ResponseText + ")");
  }
  if (!VerifyDetached(content, http_.ResponseText, *key)) return discard("its signature does not verify");
  return true;
}

void mdlUpdate::GetFileHashes(std::string_view FileList) {
  const std::vector<std::string> names = Split(FileList, "\r\n");
  std::string query = "?file0=" + names[0];
  for (std::size_t i = 1; i < names.size(); ++i) query += "&file" + std::to_string(i) + "=" + names[i];
  http_.Start_Download(false, "GET", ports_.endpoints.server + "/file_hashes" + query, AgentString(), "", "", "");
  if (http_.HTTPStatus != 200) {
    ports_.log.DebugLog("(GetFileHashes) Failed: " + http_.ResponseText);
    return;
  }
  const FileHashList list = ReadFileHashList(http_.ResponseText);
  for (const auto& [name, hash] : list.entries) {
    ports_.log.DebugLog("(GetFileHashes) Storing " + name + ": " + hash);
    FileHashes[name] = hash;
  }
  // A line without "=" has no hash part to take.
  if (list.stoppedAtMalformedLine) ports_.log.DebugLog("(GetFileHashes) Error: Subscript out of range (9)");
}

bool mdlUpdate::CheckServerMD5(std::string_view Hash, std::string_view FileName) {
  ports_.log.DebugLog("(CheckServerMD5) Checking file " + std::string(FileName) + " has hash " + std::string(Hash));
  const auto it = FileHashes.find(FileName);
  return it != FileHashes.end() && it->second == Hash;
}

std::string mdlUpdate::LocalHash(std::string_view fileName, bool binary) {
  return ContentHash(ReadFile(ports_.log, ports_.paths.ProgramFolder() / std::string(fileName)), binary);
}

std::optional<std::int16_t> mdlUpdate::Refresh(const RefreshEntry& entry, std::string_view agent) {
  if (CheckServerMD5(LocalHash(entry.file, entry.binary), entry.file)) return std::nullopt;
  return UpdateLocalFile(entry.showDialog, ports_.endpoints.server + "/updates/" + std::string(entry.file),
                         entry.target, entry.lastCheckedName, entry.interval, agent, entry.lastModifiedKey,
                         entry.forced, "");
}

bool mdlUpdate::UpdateToolbarDLL(bool Forced) {
  const std::string url = ports_.endpoints.site + "/check_update/" + ServerLabel(ports_.endpoints.server) + "/" +
                          VersionText() + "/" + ReadGUID(ports_.settings);
  // The result, not the form's last status: a check that was not due leaves
  // the form holding some earlier transfer's status.
  LastUpdateCheckStatus = UpdateLocalFile(true, url, "twtb.new", "LastCheckedDLL", ports_.options.DLLUpdateInterval,
                                          AgentString(), "", Forced, "");
  if (LastUpdateCheckStatus != 200) {
    ports_.log.DebugLog("(UpdateToolbarDLL) DLL update failed with status " + std::to_string(http_.HTTPStatus));
    return false;
  }
  ports_.log.DebugLog("(UpdateToolbarDLL) An updated DLL is available");
  const int answer = ports_.ui.MessageBox("There is a new version of " + std::string(product::kFileDescription) +
                                              " available. Would you like to install it now?",
                                          "Update available", vbYesNo | vbQuestion);
  if (answer != vbNo) {
    ports_.log.DebugLog("(UpdateToolbarDLL) Updating DLL");
    shell_.StartProgram(ports_.paths.ProgramFolder() / "updater.exe");
  }
  return true;
}

bool mdlUpdate::ProbeProgramFolder() {
  const auto updater = ports_.paths.ProgramFolder() / "updater.exe";
  const auto copy = ports_.paths.ProgramFolder() / "updater.exe.bak";
  std::error_code error;
  if (!std::filesystem::copy_file(updater, copy, std::filesystem::copy_options::overwrite_existing, error)) {
    return false;
  }
  std::filesystem::permissions(copy, std::filesystem::perms::owner_write, std::filesystem::perm_options::add, error);
  std::filesystem::remove(copy, error);
  return true;
}

}  // namespace tarnwick

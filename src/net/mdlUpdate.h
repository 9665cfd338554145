// mdlUpdate: keeps the data files, the components and the program itself
// current from the toolbar server: the hash list, the interval-driven
// refresh of one file, the component swap and the self-update check.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "net/NetPorts.h"
#include "net/frmHTTP.h"
#include "support/Shell.h"

namespace tarnwick {

// One row of the refresh table: which server file lands where, guarded by
// which LastChecked value.
struct RefreshEntry {
  std::string_view file;             // name on the server and in the hash list
  std::string_view target;           // local file name in the program folder
  std::string_view lastCheckedName;  // settings value stamped after a check
  std::int32_t interval = 0;
  bool forced = false;
  bool showDialog = false;
  std::string_view lastModifiedKey;  // empty: no conditional request
  bool binary = false;               // hashed over raw bytes (components)
};

// The files the band refreshes at start, in the order of the hash request,
// and the refresh rows of the data files, components and menu files.
const std::vector<std::string_view>& HashListFiles();
const std::vector<RefreshEntry>& StartupRefreshTable();
const std::vector<RefreshEntry>& MenuRefreshTable();

// Moves a downloaded pagefetch.new into place (pagefetch.dll -> .old), the
// next time the download form loads. When the second rename fails the first
// is undone.
void SwapPageFetch(NetPorts& ports);
// Repairs a swap cut short between its renames (pagefetch.dll missing,
// pagefetch.old present): finishes it with pagefetch.new, or puts
// pagefetch.old back. Runs before the form looks for pagefetch.dll.
void RecoverPageFetchSwap(NetPorts& ports);

class mdlUpdate {
 public:
  mdlUpdate(NetPorts ports, frmHTTP& http, Shell& shell);

  // The HTTP status of the fetch, or 0 when nothing was fetched, the file
  // did not prove itself (see DownloadCheck.h) or could not be written. A
  // file that does not prove itself is discarded with a line in the event
  // log, and the old file stays.
  std::int16_t UpdateLocalFile(bool ShowDialog, std::string_view URL, std::string_view FileName,
                               std::string_view LastCheckedName, std::int32_t Interval, std::string_view Agent,
                               std::string_view LastModifiedKey, bool Forced, std::string_view Caption);
  // Asks the server for the hashes of the files named in `FileList` (CR LF
  // separated) and keeps them in FileHashes.
  void GetFileHashes(std::string_view FileList);
  bool CheckServerMD5(std::string_view Hash, std::string_view FileName);
  double SecondsSinceLastChecked(std::string_view Name);
  void SetLastChecked(std::string_view Name);
  // True when a new version of the program was downloaded.
  bool UpdateToolbarDLL(bool Forced);
  // Copies updater.exe to updater.exe.bak and deletes the copy: whether the
  // program folder can be written. False when the copy failed.
  bool ProbeProgramFolder();

  // The upper-case MD5 of a local file as the server computes it.
  std::string LocalHash(std::string_view fileName, bool binary);
  // Fetches the entry's file when the server's hash differs from the local
  // one: the result of UpdateLocalFile, or nullopt when the file was current.
  std::optional<std::int16_t> Refresh(const RefreshEntry& entry, std::string_view agent);

  std::map<std::string, std::string, std::less<>> FileHashes;
  // The status of the last update check's fetch; 0 when it made no request.
  std::int16_t LastUpdateCheckStatus = 0;

 private:
  // Whether a downloaded file may replace the one in the program folder: its
  // published hash and, for code, its signature (fetched through the form).
  bool AcceptDownload(std::string_view URL, const std::string& name, std::string_view Agent,
                      const std::string& content);
  // Writes an accepted file in place; 200, or 0 when it could not be written.
  std::int16_t InstallDownload(std::string_view URL, const std::string& name, const std::string& content,
                               std::string_view LastModifiedKey, const std::string& lastModified);

  NetPorts ports_;
  frmHTTP& http_;
  Shell& shell_;
};

}  // namespace tarnwick

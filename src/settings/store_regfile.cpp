#include "settings/store_regfile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <functional>
#include <optional>
#include <set>
#include <system_error>

#include "settings/RegFile.h"
#include "settings/file_watch_posix.h"
#include "support/Log.h"
#include "support/ReplaceFile.h"
#include "support/SystemCalls.h"

namespace tarnwick {
namespace {

long StatusOfErrno(int error) {
  switch (error) {
    case ENOENT: return kErrorFileNotFound;
    case EACCES:
    case EPERM:
    case EROFS: return kErrorAccessDenied;
    default: return kErrorRegistryIoFailed;
  }
}

std::string RootName(Root root) { return root == Root::CurrentUser ? "HKEY_CURRENT_USER" : "HKEY_LOCAL_MACHINE"; }

// What stat says of a file: while it stays the same, so does the content
// (every write replaces the file, which gives it a new inode).
struct FileIdentity {
  dev_t device = 0;
  ino_t inode = 0;
  off_t size = 0;
  std::int64_t modified = 0;  // nanoseconds
  std::int64_t changed = 0;

  static FileIdentity Of(const struct stat& info) {
    const auto nanoseconds = [](const timespec& time) {
      return static_cast<std::int64_t>(time.tv_sec) * 1000000000 + time.tv_nsec;
    };
    return {info.st_dev, info.st_ino, info.st_size, nanoseconds(info.st_mtim), nanoseconds(info.st_ctim)};
  }
  bool operator==(const FileIdentity&) const = default;
};

// Why a file that stat describes cannot be the settings file; empty when it can.
std::string Unusable(const struct stat& info) {
  if (S_ISDIR(info.st_mode)) return "it is a directory";
  if (!S_ISREG(info.st_mode)) return "it is not a regular file";
  if (static_cast<std::uintmax_t>(info.st_size) > kMaxSettingsFileBytes) return "it is larger than 1 MiB";
  return {};
}

// Reads the settings file whole. On failure, `problem` says why and `status`
// is the store's answer to the caller.
bool ReadSettingsFile(const std::filesystem::path& path, std::string& content, FileIdentity& identity,
                      std::string& problem, long& status) {
  status = kErrorRegistryIoFailed;
  // Non-blocking, so that a FIFO in its place cannot hold the program up.
  const int fd = sys::Open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0);
  if (fd < 0) {
    status = StatusOfErrno(errno);
    problem = std::generic_category().message(errno);
    return false;
  }
  struct stat info {};
  if (::fstat(fd, &info) != 0) {
    problem = std::generic_category().message(errno);
  } else {
    problem = Unusable(info);
  }
  content.clear();
  while (problem.empty()) {
    char chunk[65536];
    const ssize_t n = sys::Read(fd, chunk, sizeof chunk);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) problem = std::generic_category().message(errno);
    if (n <= 0) break;
    content.append(chunk, static_cast<std::size_t>(n));
    // It may have grown since fstat.
    if (content.size() > kMaxSettingsFileBytes) problem = "it is larger than 1 MiB";
  }
  sys::Close(fd);
  identity = FileIdentity::Of(info);
  return problem.empty();
}

class RegFileStore;

class RegFileKey final : public RegistryKey {
 public:
  RegFileKey(RegFileStore& store, Root root, std::string path, bool writable)
      : store_(store), root_(root), path_(std::move(path)), writable_(writable) {}

  long QueryValueInfo(std::string_view name, std::uint32_t& type, std::uint32_t& size) override;
  long QueryValueData(std::string_view name, std::uint32_t size, std::string& data) override;
  long SetValue(std::string_view name, std::uint32_t type, std::string_view data) override;
  long DeleteValue(std::string_view name) override;
  long ValueNames(std::vector<std::string>& names) override;

 private:
  // The value's data as the registry reports it: text with its terminator.
  static std::string Reported(const RegValue& value) {
    if (value.type == kRegSz && (value.data.empty() || value.data.back() != '\0')) return value.data + '\0';
    return value.data;
  }

  RegFileStore& store_;
  Root root_;
  std::string path_;
  bool writable_;
};

class RegFileStore final : public SettingsStore {
 public:
  RegFileStore(std::filesystem::path user, std::filesystem::path machine, Log& log) : log_(log) {
    roots_[static_cast<std::size_t>(Root::CurrentUser)].path = std::move(user);
    roots_[static_cast<std::size_t>(Root::LocalMachine)].path = std::move(machine);
  }

  long OpenKey(Root root, std::string_view path, Access access, std::unique_ptr<RegistryKey>& key) override {
    const bool writing = access != Access::Read;
    if (writing && !Writable(root)) return kErrorAccessDenied;
    long status = kErrorSuccess;
    const auto file = Load(root, status);
    if (!file) return status;
    if (!file->HasKey(FullPath(root, path))) return kErrorFileNotFound;
    key = std::make_unique<RegFileKey>(*this, root, FullPath(root, path), writing);
    return kErrorSuccess;
  }

  long CreateKey(Root root, std::string_view path, std::unique_ptr<RegistryKey>& key) override {
    if (!Writable(root)) return kErrorAccessDenied;
    const std::string full = FullPath(root, path);
    long status = kErrorSuccess;
    const auto file = Load(root, status);
    if (!file) return status;
    if (!file->HasKey(full)) {
      status = Modify(root, [&](RegFile& content) {
        content.AddKey(full);
        return kErrorSuccess;
      });
      if (status != kErrorSuccess) return status;
    }
    key = std::make_unique<RegFileKey>(*this, root, full, true);
    return kErrorSuccess;
  }

  void ReportProblemsTo(std::function<void(const std::string&)> report) override { report_ = std::move(report); }

  // The file is read again (one stat, and a parse when it changed) only when
  // the watch on it says it may have changed.
  std::optional<std::uint64_t> Revision(Root root) override {
    RootFile& rootFile = roots_[static_cast<std::size_t>(root)];
    if (!rootFile.watch) rootFile.watch = std::make_unique<FileWatch>(rootFile.path);
    if (rootFile.watch->Unchanged()) return rootFile.revision;
    long status = kErrorSuccess;
    Load(root, status);
    return rootFile.revision;
  }

  // Whether a parse kept from before will do, or the file is read again.
  enum class Reading { Cached, Fresh };

  // The file as it is now, parsed once for as long as it does not change; a
  // missing file is an empty registry. Null, with `status` set and the
  // reason reported, when the file is there but cannot be read.
  std::shared_ptr<const RegFile> Load(Root root, long& status, Reading reading = Reading::Cached) {
    RootFile& rootFile = roots_[static_cast<std::size_t>(root)];
    struct stat info {};
    if (::stat(rootFile.path.c_str(), &info) != 0) {
      if (errno == ENOENT) return Missing(rootFile);
      const int error = errno;
      status = StatusOfErrno(error);
      Unreadable(rootFile, std::generic_category().message(error));
      return nullptr;
    }
    if (reading == Reading::Cached && rootFile.cached && rootFile.identity == FileIdentity::Of(info)) {
      return rootFile.cached;
    }
    if (const std::string problem = Unusable(info); !problem.empty()) {
      status = kErrorRegistryIoFailed;
      Unreadable(rootFile, problem);
      return nullptr;
    }
    std::string content;
    FileIdentity identity;
    std::string problem;
    if (!ReadSettingsFile(rootFile.path, content, identity, problem, status)) {
      if (status == kErrorFileNotFound) return Missing(rootFile);  // removed since stat
      Unreadable(rootFile, problem);
      return nullptr;
    }
    auto file = std::make_shared<const RegFile>(RegFile::Parse(content));
    ReportUnreadableLines(rootFile, *file);
    rootFile.problem.clear();
    Keep(rootFile, file);
    rootFile.identity = identity;
    return file;
  }

  // Under the lock, applies `change` to the file as it is now (read afresh:
  // what another program wrote a moment ago is kept) and renames the new
  // content over it when the change succeeded. A file that cannot be read is
  // never replaced: that would lose every value it holds.
  long Modify(Root root, const std::function<long(RegFile&)>& change) {
    RootFile& rootFile = roots_[static_cast<std::size_t>(root)];
    std::error_code ignored;
    if (root == Root::CurrentUser) std::filesystem::create_directories(rootFile.path.parent_path(), ignored);

    const std::string lockPath = rootFile.path.string() + ".lock";
    const int lock = sys::Open(lockPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (lock < 0) return StatusOfErrno(errno);
    while (::flock(lock, LOCK_EX) != 0 && errno == EINTR) {
    }
    long status = kErrorSuccess;
    if (const auto current = Load(root, status, Reading::Fresh)) {
      RegFile content = *current;
      status = change(content);
      if (status == kErrorSuccess) status = Replace(rootFile, std::move(content));
    }
    sys::Close(lock);
    return status;
  }

 private:
  struct RootFile {
    std::filesystem::path path;
    std::shared_ptr<const RegFile> cached;
    std::optional<FileIdentity> identity;
    std::string problem;               // the last one reported
    std::uint64_t revision = 0;        // counts the changes of `cached`
    std::unique_ptr<FileWatch> watch;  // made when a revision is first asked
  };

  static void Keep(RootFile& rootFile, std::shared_ptr<const RegFile> file) {
    rootFile.cached = std::move(file);
    ++rootFile.revision;
  }

  static std::string FullPath(Root root, std::string_view path) {
    return path.empty() ? RootName(root) : RootName(root) + "\\" + std::string(path);
  }

  bool Writable(Root root) const {
    if (root == Root::CurrentUser) return true;
    const std::filesystem::path& machine = roots_[static_cast<std::size_t>(Root::LocalMachine)].path;
    std::error_code error;
    if (!std::filesystem::is_directory(machine.parent_path(), error)) return false;
    if (::access(machine.parent_path().c_str(), W_OK) != 0) return false;
    return !std::filesystem::exists(machine, error) || ::access(machine.c_str(), W_OK) == 0;
  }

  long Replace(RootFile& rootFile, RegFile content) {
    const std::string text = content.Serialize();
    if (text.size() > kMaxSettingsFileBytes) {
      log_.DebugLog("(SettingsStore) Not writing " + rootFile.path.string() + ": it would grow larger than 1 MiB");
      return kErrorRegistryIoFailed;
    }
    const auto failure = ReplaceFile(rootFile.path, text, ".tmp." + std::to_string(::getpid()),
                                     std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    if (failure) {
      log_.DebugLog("(SettingsStore) Error writing " + rootFile.path.string() + ": " + failure->error.message());
      return StatusOfErrno(failure->error.value());
    }
    // Still under the lock: nobody else can have replaced it since.
    struct stat info {};
    if (::stat(rootFile.path.c_str(), &info) == 0) {
      Keep(rootFile, std::make_shared<const RegFile>(std::move(content)));
      rootFile.identity = FileIdentity::Of(info);
    }
    return kErrorSuccess;
  }

  // A missing file is an empty registry.
  static std::shared_ptr<const RegFile> Missing(RootFile& rootFile) {
    rootFile.problem.clear();
    if (!rootFile.cached || rootFile.identity) Keep(rootFile, std::make_shared<const RegFile>());
    rootFile.identity.reset();
    return rootFile.cached;
  }

  void Unreadable(RootFile& rootFile, const std::string& reason) {
    if (rootFile.cached) Keep(rootFile, nullptr);
    rootFile.identity.reset();
    const std::string problem = "Cannot read " + rootFile.path.string() + ": " + reason +
                                " (the defaults are used, and nothing is written over it)";
    if (problem == rootFile.problem) return;
    rootFile.problem = problem;
    log_.DebugLog("(SettingsStore) " + problem);
    if (report_) report_(problem);
  }

  void ReportUnreadableLines(const RootFile& rootFile, const RegFile& file) {
    if (!log_.DebugEnabled()) return;
    for (const auto& line : file.UnreadableLines()) {
      if (reportedLines_.insert(line).second) {
        log_.DebugLog("(SettingsStore) Kept unreadable line of " + rootFile.path.string() + ": " + line);
      }
    }
  }

  Log& log_;
  std::array<RootFile, 2> roots_;  // indexed by Root
  std::function<void(const std::string&)> report_;
  std::set<std::string> reportedLines_;
};

long RegFileKey::QueryValueInfo(std::string_view name, std::uint32_t& type, std::uint32_t& size) {
  long status = kErrorSuccess;
  const auto file = store_.Load(root_, status);
  if (!file) return status;
  const RegValue* value = file->FindValue(path_, name);
  if (value == nullptr) return kErrorFileNotFound;
  type = value->type;
  size = static_cast<std::uint32_t>(Reported(*value).size());
  return kErrorSuccess;
}

long RegFileKey::QueryValueData(std::string_view name, std::uint32_t size, std::string& data) {
  long status = kErrorSuccess;
  const auto file = store_.Load(root_, status);
  if (!file) return status;
  const RegValue* value = file->FindValue(path_, name);
  if (value == nullptr) return kErrorFileNotFound;
  std::string reported = Reported(*value);
  if (reported.size() > size) return kErrorMoreData;
  data = std::move(reported);
  return kErrorSuccess;
}

long RegFileKey::SetValue(std::string_view name, std::uint32_t type, std::string_view data) {
  if (!writable_) return kErrorAccessDenied;
  return store_.Modify(root_, [&](RegFile& file) {
    file.SetValue(path_, {std::string(name), type, std::string(data)});
    return kErrorSuccess;
  });
}

long RegFileKey::DeleteValue(std::string_view name) {
  if (!writable_) return kErrorAccessDenied;
  return store_.Modify(
      root_, [&](RegFile& file) { return file.DeleteValue(path_, name) ? kErrorSuccess : kErrorFileNotFound; });
}

long RegFileKey::ValueNames(std::vector<std::string>& names) {
  long status = kErrorSuccess;
  const auto file = store_.Load(root_, status);
  if (!file) return status;
  names = file->ValueNames(path_);
  return kErrorSuccess;
}

std::filesystem::path FromEnvironment(const char* name, const std::filesystem::path& fallback) {
  const char* value = std::getenv(name);
  return value != nullptr && *value != '\0' ? std::filesystem::path(value) : fallback;
}

}  // namespace

std::unique_ptr<SettingsStore> MakeRegFileStore(const std::filesystem::path& currentUserFile,
                                                const std::filesystem::path& localMachineFile, Log& log) {
  return std::make_unique<RegFileStore>(currentUserFile, localMachineFile, log);
}

std::unique_ptr<SettingsStore> MakePlatformSettingsStore(Log& log) {
  const auto home = FromEnvironment("HOME", "/");
  const auto config = FromEnvironment("XDG_CONFIG_HOME", home / ".config");
  const auto machine = FromEnvironment("TARNWICK_LOCAL_MACHINE_SETTINGS", "/etc/tarnwick/local-machine.reg");
  return MakeRegFileStore(config / "tarnwick" / "settings.reg", machine, log);
}

}  // namespace tarnwick

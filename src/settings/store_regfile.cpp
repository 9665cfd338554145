#include "settings/store_regfile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iterator>
#include <set>
#include <system_error>

#include "settings/RegFile.h"
#include "support/Log.h"
#include "support/ReplaceFile.h"

namespace tarnwick {
namespace {

long StatusOfErrno(int error) { return error == ENOENT ? kErrorFileNotFound : kErrorAccessDenied; }

std::string RootName(Root root) { return root == Root::CurrentUser ? "HKEY_CURRENT_USER" : "HKEY_LOCAL_MACHINE"; }

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
  RegFileStore(std::filesystem::path user, std::filesystem::path machine, Log& log)
      : user_(std::move(user)), machine_(std::move(machine)), log_(log) {}

  long OpenKey(Root root, std::string_view path, Access access, std::unique_ptr<RegistryKey>& key) override {
    const bool writing = access != Access::Read;
    if (writing && !Writable(root)) return kErrorAccessDenied;
    if (!Load(root).HasKey(FullPath(root, path))) return kErrorFileNotFound;
    key = std::make_unique<RegFileKey>(*this, root, FullPath(root, path), writing);
    return kErrorSuccess;
  }

  long CreateKey(Root root, std::string_view path, std::unique_ptr<RegistryKey>& key) override {
    if (!Writable(root)) return kErrorAccessDenied;
    const std::string full = FullPath(root, path);
    if (!Load(root).HasKey(full)) {
      const long status = Modify(root, [&](RegFile& file) {
        file.AddKey(full);
        return kErrorSuccess;
      });
      if (status != kErrorSuccess) return status;
    }
    key = std::make_unique<RegFileKey>(*this, root, full, true);
    return kErrorSuccess;
  }

  // The file as it is now; a missing file is an empty registry.
  RegFile Load(Root root) {
    std::ifstream in(FileOf(root), std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    RegFile file = RegFile::Parse(content);
    ReportUnreadable(root, file);
    return file;
  }

  // Re-reads the file under the lock, applies `change`, and renames the new
  // content over the file when the change succeeded.
  long Modify(Root root, const std::function<long(RegFile&)>& change) {
    const std::filesystem::path& file = FileOf(root);
    std::error_code error;
    if (root == Root::CurrentUser) std::filesystem::create_directories(file.parent_path(), error);

    const std::string lockPath = file.string() + ".lock";
    const int lock = ::open(lockPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (lock < 0) return StatusOfErrno(errno);
    while (::flock(lock, LOCK_EX) != 0 && errno == EINTR) {
    }
    RegFile content = Load(root);
    long status = change(content);
    if (status == kErrorSuccess) status = Replace(file, content.Serialize());
    ::close(lock);
    return status;
  }

 private:
  static std::string FullPath(Root root, std::string_view path) {
    return path.empty() ? RootName(root) : RootName(root) + "\\" + std::string(path);
  }

  const std::filesystem::path& FileOf(Root root) const { return root == Root::CurrentUser ? user_ : machine_; }

  bool Writable(Root root) const {
    if (root == Root::CurrentUser) return true;
    std::error_code error;
    if (!std::filesystem::is_directory(machine_.parent_path(), error)) return false;
    if (::access(machine_.parent_path().c_str(), W_OK) != 0) return false;
    return !std::filesystem::exists(machine_, error) || ::access(machine_.c_str(), W_OK) == 0;
  }

  static long Replace(const std::filesystem::path& file, const std::string& content) {
    const auto failure = ReplaceFile(file, content, ".tmp." + std::to_string(::getpid()),
                                     std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    return failure ? StatusOfErrno(failure->error.value()) : kErrorSuccess;
  }

  void ReportUnreadable(Root root, const RegFile& file) {
    if (!log_.DebugEnabled()) return;
    for (const auto& line : file.UnreadableLines()) {
      if (reported_.insert(line).second) {
        log_.DebugLog("(SettingsStore) Kept unreadable line of " + FileOf(root).string() + ": " + line);
      }
    }
  }

  std::filesystem::path user_;
  std::filesystem::path machine_;
  Log& log_;
  std::set<std::string> reported_;
};

long RegFileKey::QueryValueInfo(std::string_view name, std::uint32_t& type, std::uint32_t& size) {
  const RegFile file = store_.Load(root_);
  const RegValue* value = file.FindValue(path_, name);
  if (value == nullptr) return kErrorFileNotFound;
  type = value->type;
  size = static_cast<std::uint32_t>(Reported(*value).size());
  return kErrorSuccess;
}

long RegFileKey::QueryValueData(std::string_view name, std::uint32_t size, std::string& data) {
  const RegFile file = store_.Load(root_);
  const RegValue* value = file.FindValue(path_, name);
  if (value == nullptr) return kErrorFileNotFound;
  const std::string reported = Reported(*value);
  if (reported.size() > size) return kErrorMoreData;
  data = reported;
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
  names = store_.Load(root_).ValueNames(path_);
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

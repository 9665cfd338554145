#include "support/Files.h"

#include "support/ReplaceFile.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <system_error>

namespace tarnwick {
namespace {

std::string Describe(int error) { return std::generic_category().message(error); }

template <class Container>
bool ReadWhole(Log& log, const std::filesystem::path& path, const char* routine, Container& content) {
  content.clear();
  if (!FileExists(path)) return false;
  errno = 0;
  try {
    std::ifstream in(path, std::ios::binary);
    char chunk[65536];
    while (in) {
      in.read(chunk, sizeof chunk);
      content.insert(content.end(), chunk, chunk + in.gcount());
    }
    if (!in.bad()) return true;
  } catch (const std::exception&) {
    // Reported below with the error the system gave.
  }
  log.DebugLog(std::string("(") + routine + ") Error reading " + path.string() + ": " +
               Describe(errno != 0 ? errno : EIO));
  content.clear();
  return false;
}

}  // namespace

bool FileExists(const std::filesystem::path& path) {
  std::error_code error;
  return std::filesystem::is_regular_file(path, error);
}

std::string ReadFile(Log& log, const std::filesystem::path& path) {
  std::string text;
  ReadWhole(log, path, "ReadFile", text);
  return text;
}

std::vector<std::uint8_t> ReadBinaryFile(Log& log, const std::filesystem::path& path) {
  std::vector<std::uint8_t> bytes;
  ReadWhole(log, path, "ReadBinaryFile", bytes);
  return bytes;
}

bool WriteFile(Log& log, const std::filesystem::path& path, std::string_view text) {
  log.DebugLog("(WriteFile) Writing " + path.string());
  // The new content is complete on disk before it replaces the old file, so a
  // failure at any moment leaves one of the two whole.
  const auto failure = ReplaceFile(path, text, kPartialSuffix);
  if (!failure) return true;
  const char* what = failure->stage == ReplaceFailure::Stage::Renaming ? "deleting" : "writing";
  log.DebugLog("(WriteFile) Error " + std::string(what) + " " + path.string() + ": " + failure->error.message());
  return false;
}

}  // namespace tarnwick

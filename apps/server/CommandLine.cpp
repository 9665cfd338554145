#include <algorithm>
#include <cstdlib>

#include "ServerCli.h"

namespace tarnwick::server::cli {

bool ParseArguments(const std::vector<std::string>& args, const std::vector<std::string_view>& valued,
                    const std::vector<std::string_view>& switches, Arguments& parsed, std::string& error) {
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    if (arg.size() < 2 || arg.compare(0, 2, "--") != 0) {
      parsed.operands.push_back(arg);
    } else if (std::find(switches.begin(), switches.end(), arg) != switches.end()) {
      parsed.switches.insert(arg);
    } else if (std::find(valued.begin(), valued.end(), arg) == valued.end()) {
      error = "unknown option '" + arg + "'";
      return false;
    } else if (i + 1 == args.size()) {
      error = "option '" + arg + "' needs a value";
      return false;
    } else {
      parsed.values[arg] = args[++i];
    }
  }
  return true;
}

std::filesystem::path DefaultDatabase() {
  const char* data = std::getenv("XDG_DATA_HOME");
  const char* home = std::getenv("HOME");
  std::filesystem::path folder = data != nullptr && *data != '\0'
                                     ? std::filesystem::path(data)
                                     : std::filesystem::path(home != nullptr ? home : ".") / ".local" / "share";
  folder /= "tarnwick";
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  return folder / "server.db";
}

std::filesystem::path BundledDataFolder() { return TARNWICK_BUNDLED_DATA_DIR; }

}  // namespace tarnwick::server::cli

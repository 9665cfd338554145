// The pieces the commands of the tarnwick-server program share.
#pragma once

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::server::cli {

// Exit statuses, as the toolbar's own command has them.
inline constexpr int kExitOk = 0;
inline constexpr int kExitFound = 1;
inline constexpr int kExitError = 2;

struct Arguments {
  std::map<std::string, std::string, std::less<>> values;  // --name VALUE
  std::set<std::string, std::less<>> switches;             // --name
  std::vector<std::string> operands;
};

// Splits `args` into the flags named in `valued` (each followed by a value),
// the switches named in `switches`, and operands. False, with the reason in
// `error`, for any other flag or a flag without its value.
bool ParseArguments(const std::vector<std::string>& args, const std::vector<std::string_view>& valued,
                    const std::vector<std::string_view>& switches, Arguments& parsed, std::string& error);

// $XDG_DATA_HOME/tarnwick/server.db (default ~/.local/share/...), its folder created.
std::filesystem::path DefaultDatabase();
// The data folder bundled with the sources.
std::filesystem::path BundledDataFolder();

int RunServe(const std::vector<std::string>& args);
int RunImport(const std::vector<std::string>& args);
int RunReports(const std::vector<std::string>& args);
int RunKeygen(const std::vector<std::string>& args);

}  // namespace tarnwick::server::cli

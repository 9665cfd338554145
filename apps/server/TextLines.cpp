#include "server/TextLines.h"

#include <fstream>
#include <sstream>

namespace tarnwick::server {

std::string_view TrimBlanks(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r") + 1 - first);
}

void ForEachLine(std::string_view text, const std::function<bool(std::size_t, std::string_view)>& visit) {
  for (std::size_t number = 1; !text.empty(); ++number) {
    const auto newline = text.find('\n');
    if (!visit(number, text.substr(0, newline))) return;
    text = newline == std::string_view::npos ? std::string_view() : text.substr(newline + 1);
  }
}

std::optional<std::string> ReadTextFile(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) return std::nullopt;
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

}  // namespace tarnwick::server

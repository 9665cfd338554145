#include "server/TextLines.h"

#include <fstream>
#include <limits>
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

LineRead ReadBoundedLine(std::istream& in, std::string& line, std::size_t maxBytes) {
  // istream::getline stores at most size - 1 characters and fails when
  // more come before the LF.
  line.resize(maxBytes + 1);
  in.getline(line.data(), static_cast<std::streamsize>(line.size()));
  const auto extracted = static_cast<std::size_t>(in.gcount());
  if (in.fail() && !in.eof()) {
    in.clear();
    in.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
    line.clear();
    return LineRead::TooLong;
  }
  // The LF is counted as extracted but not stored; the last line may lack it.
  line.resize(in.eof() ? extracted : extracted - 1);
  return extracted == 0 && in.eof() ? LineRead::End : LineRead::Line;
}

std::optional<std::string> ReadTextFile(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) return std::nullopt;
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

}  // namespace tarnwick::server

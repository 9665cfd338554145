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

LineRead ReadBoundedLine(std::istream& in, std::string& line, std::size_t maxBytes) {
  line.clear();
  std::streambuf& buffer = *in.rdbuf();
  bool any = false, tooLong = false;
  for (int c; (c = buffer.sbumpc()) != std::char_traits<char>::eof();) {
    any = true;
    if (c == '\n') break;
    if (line.size() < maxBytes) {
      line += static_cast<char>(c);
    } else {
      tooLong = true;
    }
  }
  if (tooLong) line.clear();
  return tooLong ? LineRead::TooLong : any ? LineRead::Line : LineRead::End;
}

std::optional<std::string> ReadTextFile(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) return std::nullopt;
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

}  // namespace tarnwick::server

#include "server/Csv.h"

namespace tarnwick::server {

bool CsvReader::Next(std::vector<std::string>& fields, std::size_t& line, bool& broken) {
  std::string text;
  do {
    if (!std::getline(in_, text)) return false;
    ++lineNumber_;
    if (lineNumber_ == 1 && text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
  } while (text.empty() || text == "\r" || (hashComments_ && text.front() == '#'));
  line = lineNumber_;
  fields.assign(1, std::string());
  broken = false;
  bool quoted = false;
  std::size_t recordBytes = 0;
  while (true) {
    if (!text.empty() && text.back() == '\r') text.pop_back();
    for (std::size_t i = 0; i < text.size(); ++i) {
      const char c = text[i];
      if (quoted) {
        if (c != '"') {
          fields.back() += c;
        } else if (i + 1 < text.size() && text[i + 1] == '"') {
          fields.back() += '"';
          ++i;
        } else {
          quoted = false;
        }
      } else if (c == '"') {
        quoted = true;
      } else if (c == ',') {
        fields.emplace_back();
      } else {
        fields.back() += c;
      }
    }
    recordBytes += text.size() + 1;
    if (!quoted) return true;
    if (recordBytes > kMaxRecordBytes || !std::getline(in_, text)) {
      broken = true;
      return true;
    }
    ++lineNumber_;
    fields.back() += '\n';
  }
}

}  // namespace tarnwick::server

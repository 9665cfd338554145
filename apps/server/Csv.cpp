#include "server/Csv.h"

#include "server/TextLines.h"

namespace tarnwick::server {

bool CsvReader::Next(std::vector<std::string>& fields, std::size_t& line, std::string& broken) {
  std::string text;
  LineRead read;
  do {
    read = ReadBoundedLine(in_, text, kMaxRecordBytes);
    if (read == LineRead::End) return false;
    ++lineNumber_;
    if (lineNumber_ == 1 && text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
  } while (read == LineRead::Line && (text.empty() || text == "\r" || (hashComments_ && text.front() == '#')));
  line = lineNumber_;
  fields.assign(1, std::string());
  broken.clear();
  if (read == LineRead::TooLong) {
    broken = "a line longer than " + std::to_string(kMaxRecordBytes) + " bytes";
    return true;
  }
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
    const LineRead next =
        recordBytes < kMaxRecordBytes ? ReadBoundedLine(in_, text, kMaxRecordBytes - recordBytes) : LineRead::End;
    if (next != LineRead::End) ++lineNumber_;
    if (next != LineRead::Line) {
      broken = "a quoted field is not closed";
      return true;
    }
    fields.back() += '\n';
  }
}

}  // namespace tarnwick::server

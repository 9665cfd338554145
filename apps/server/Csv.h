// Records of a CSV file (RFC 4180): fields separated by commas, optionally
// in double quotes, where "" is a quote and line breaks may appear.
#pragma once

#include <cstddef>
#include <istream>
#include <string>
#include <vector>

namespace tarnwick::server {

class CsvReader {
 public:
  // With `hashComments`, lines starting with "#" between records are skipped.
  CsvReader(std::istream& in, bool hashComments) : in_(in), hashComments_(hashComments) {}

  // The next record; false at the end of the input. `line` is the line the
  // record starts on. `broken` says why the record is unusable, or is empty:
  // a quote left open (the record then ends at the end of the input or
  // after kMaxRecordBytes, and reading goes on from there), or a line
  // longer than kMaxRecordBytes (skipped to its end).
  bool Next(std::vector<std::string>& fields, std::size_t& line, std::string& broken);

  static constexpr std::size_t kMaxRecordBytes = 65536;

 private:
  std::istream& in_;
  bool hashComments_;
  std::size_t lineNumber_ = 0;
};

}  // namespace tarnwick::server

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
  // record starts on. `broken` says the record is unusable: a quote left
  // open (the record then ends at the end of the input or after
  // kMaxRecordBytes, and reading goes on from there).
  bool Next(std::vector<std::string>& fields, std::size_t& line, bool& broken);

  static constexpr std::size_t kMaxRecordBytes = 65536;

 private:
  std::istream& in_;
  bool hashComments_;
  std::size_t lineNumber_ = 0;
};

}  // namespace tarnwick::server

// The server's hash list (/file_hashes): "NAME=HASH" lines, each ended by
// CR LF. A plain function of text, so it is tested and fuzzed on its own.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarnwick {

struct FileHashList {
  // In the order of the reply; a name may come more than once.
  std::vector<std::pair<std::string, std::string>> entries;
  // A line without "=" stopped the reading there: the entries before it
  // count, the lines after it do not.
  bool stoppedAtMalformedLine = false;
};

// Only lines ended by CR LF count (a last piece without one is ignored). The
// name is the text before the first "=", the hash the text after it up to a
// second "=", if any.
FileHashList ReadFileHashList(std::string_view reply);

}  // namespace tarnwick

#include "net/FileHashList.h"

#include <algorithm>

#include "support/Text.h"

namespace tarnwick {

FileHashList ReadFileHashList(std::string_view reply) {
  FileHashList list;
  const std::vector<std::string> lines = Split(reply, "\r\n");
  // The reply ends with CR LF: its last piece is never a line of its own.
  for (std::size_t i = 0; i + 1 < lines.size(); ++i) {
    const std::string& line = lines[i];
    const auto equals = line.find('=');
    if (equals == std::string::npos) {
      list.stoppedAtMalformedLine = true;
      break;
    }
    std::string hash = line.substr(equals + 1);
    hash.resize(std::min(hash.size(), hash.find('=')));
    list.entries.emplace_back(line.substr(0, equals), std::move(hash));
  }
  return list;
}

}  // namespace tarnwick

// OpenPhish's feed and our own list: one URL per line.
#include <string>

#include "server/FeedFormats.h"
#include "server/TextLines.h"

namespace tarnwick::server {

void ReadUrlList(std::istream& in, bool ourOwnList, FeedSink& sink) {
  std::size_t lineNumber = 0;
  for (std::string line; std::getline(in, line);) {
    ++lineNumber;
    line = std::string(TrimBlanks(line));
    if (line.empty()) continue;
    if (ourOwnList && line.front() == '#') continue;
    // A bare host name stands for the site's root, which marks the whole site.
    if (ourOwnList && line.find("://") == std::string::npos) line = "http://" + line;
    sink.Row({"line " + std::to_string(lineNumber), std::move(line), {}, {}});
  }
}

}  // namespace tarnwick::server

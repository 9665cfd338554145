// OpenPhish's feed and our own list: one URL per line.
#include <string>

#include "server/FeedFormats.h"
#include "server/FeedUrl.h"
#include "server/TextLines.h"

namespace tarnwick::server {

namespace {

// Longer lines are not read: no URL that long is taken anyway.
constexpr std::size_t kMaxLineBytes = 4 * kMaxFeedUrlBytes;

}  // namespace

void ReadUrlList(std::istream& in, bool ourOwnList, FeedSink& sink) {
  std::size_t lineNumber = 0;
  std::string line;
  for (LineRead read; (read = ReadBoundedLine(in, line, kMaxLineBytes)) != LineRead::End;) {
    ++lineNumber;
    if (read == LineRead::TooLong) {
      sink.Reject("line " + std::to_string(lineNumber),
                  "a line longer than " + std::to_string(kMaxLineBytes) + " bytes");
      continue;
    }
    line = std::string(TrimBlanks(line));
    if (line.empty()) continue;
    if (ourOwnList && line.front() == '#') continue;
    // A bare host name stands for the site's root, which marks the whole site.
    if (ourOwnList && line.find("://") == std::string::npos) line = "http://" + line;
    sink.Row({"line " + std::to_string(lineNumber), std::move(line), {}, {}});
  }
}

}  // namespace tarnwick::server

#include "server/FeedFormats.h"

#include <array>
#include <istream>
#include <streambuf>
#include <utility>

namespace tarnwick::server {
namespace {

constexpr std::array<std::pair<std::string_view, FeedFormat>, 5> kFormats = {{
    {"phishtank-csv", FeedFormat::PhishtankCsv},
    {"phishtank-json", FeedFormat::PhishtankJson},
    {"openphish", FeedFormat::OpenPhish},
    {"urlhaus-csv", FeedFormat::UrlhausCsv},
    {"lines", FeedFormat::Lines},
}};

// A read-only stream buffer over bytes in memory, without a copy.
class MemoryBuffer final : public std::streambuf {
 public:
  explicit MemoryBuffer(std::string_view bytes) {
    char* start = const_cast<char*>(bytes.data());
    setg(start, start, start + bytes.size());
  }
};

}  // namespace

std::optional<FeedFormat> FeedFormatNamed(std::string_view name) {
  for (const auto& [text, format] : kFormats) {
    if (text == name) return format;
  }
  return std::nullopt;
}

std::string_view FeedFormatName(FeedFormat format) {
  for (const auto& [text, known] : kFormats) {
    if (known == format) return text;
  }
  return {};
}

void ReadFeed(FeedFormat format, std::istream& in, FeedSink& sink) {
  switch (format) {
    case FeedFormat::PhishtankCsv: ReadPhishtankCsv(in, sink); break;
    case FeedFormat::PhishtankJson: ReadPhishtankJson(in, sink); break;
    case FeedFormat::OpenPhish: ReadUrlList(in, false, sink); break;
    case FeedFormat::UrlhausCsv: ReadUrlhausCsv(in, sink); break;
    case FeedFormat::Lines: ReadUrlList(in, true, sink); break;
  }
}

void ReadFeed(FeedFormat format, std::string_view bytes, FeedSink& sink) {
  MemoryBuffer buffer(bytes);
  std::istream in(&buffer);
  ReadFeed(format, in, sink);
}

}  // namespace tarnwick::server

#include "server/FeedFormats.h"

#include <array>
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

}  // namespace tarnwick::server

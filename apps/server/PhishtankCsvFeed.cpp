// PhishTank's online-valid.csv. The header names the columns, so they are
// found by name; rows PhishTank has not verified, or knows to be offline,
// are rejected.
#include <algorithm>

#include "server/Csv.h"
#include "server/FeedFormats.h"

namespace tarnwick::server {
namespace {

std::size_t ColumnOf(const std::vector<std::string>& header, std::string_view name) {
  return static_cast<std::size_t>(std::find(header.begin(), header.end(), name) - header.begin());
}

}  // namespace

void ReadPhishtankCsv(std::istream& in, FeedSink& sink) {
  CsvReader reader(in, false);
  std::vector<std::string> header, fields;
  std::size_t line = 0;
  std::string broken;
  if (!reader.Next(header, line, broken)) return;
  const std::size_t url = ColumnOf(header, "url");
  if (!broken.empty() || url == header.size()) {
    sink.Reject("line " + std::to_string(line), "the header names no url column; nothing read");
    return;
  }
  const std::size_t target = ColumnOf(header, "target");
  const std::size_t verified = ColumnOf(header, "verified");
  const std::size_t online = ColumnOf(header, "online");
  while (reader.Next(fields, line, broken)) {
    const std::string where = "line " + std::to_string(line);
    if (!broken.empty()) {
      sink.Reject(where, broken);
    } else if (fields.size() != header.size()) {
      sink.Reject(where,
                  "expected " + std::to_string(header.size()) + " columns, found " + std::to_string(fields.size()));
    } else if (verified < fields.size() && fields[verified] != "yes") {
      sink.Reject(where, "not verified");
    } else if (online < fields.size() && fields[online] != "yes") {
      sink.Reject(where, "not online");
    } else {
      sink.Row({where, std::move(fields[url]), target < fields.size() ? std::move(fields[target]) : "", {}});
    }
  }
}

}  // namespace tarnwick::server

// URLhaus's CSV export: "#" comment lines (the column names among them),
// then quoted rows id,dateadded,url,url_status,last_online,threat,tags,
// urlhaus_link,reporter.
#include "server/Csv.h"
#include "server/FeedFormats.h"

namespace tarnwick::server {
namespace {

constexpr std::size_t kColumns = 9;
constexpr std::size_t kUrlColumn = 2;

}  // namespace

void ReadUrlhausCsv(std::istream& in, FeedSink& sink) {
  CsvReader reader(in, true);
  std::vector<std::string> fields;
  std::size_t line = 0;
  std::string broken;
  while (reader.Next(fields, line, broken)) {
    const std::string where = "line " + std::to_string(line);
    if (!broken.empty()) {
      sink.Reject(where, broken);
    } else if (fields.size() != kColumns) {
      sink.Reject(where, "expected 9 columns, found " + std::to_string(fields.size()));
    } else {
      sink.Row({where, std::move(fields[kUrlColumn]), {}, {}});
    }
  }
}

}  // namespace tarnwick::server

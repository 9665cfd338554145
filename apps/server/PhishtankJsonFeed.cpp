// PhishTank's online-valid.json: an array of objects with the CSV's fields
// and "details", whose "ip_address" entries give the hosting addresses.
#include <arpa/inet.h>

#include "server/FeedFormats.h"
#include "server/Json.h"

namespace tarnwick::server {
namespace {

std::string TextOf(const JsonValue& entry, std::string_view name) {
  const JsonValue* member = entry.Member(name);
  return member != nullptr && member->type == JsonValue::Type::String ? member->text : std::string();
}

// A field that is there but does not say "yes".
bool SaysNo(const JsonValue& entry, std::string_view name) {
  return entry.Member(name) != nullptr && TextOf(entry, name) != "yes";
}

std::vector<std::uint32_t> AddressesOf(const JsonValue& entry) {
  std::vector<std::uint32_t> addresses;
  const JsonValue* details = entry.Member("details");
  if (details == nullptr) return addresses;
  for (const JsonValue& detail : details->items) {
    in_addr address{};
    if (inet_pton(AF_INET, TextOf(detail, "ip_address").c_str(), &address) == 1) {
      addresses.push_back(ntohl(address.s_addr));
    }
  }
  return addresses;
}

}  // namespace

void ReadPhishtankJson(std::istream& in, FeedSink& sink) {
  JsonArrayReader reader(in);
  JsonValue entry;
  std::size_t line = 0;
  std::string error;
  for (std::size_t number = 1;; ++number) {
    const auto step = reader.Next(entry, line, error);
    if (step == JsonArrayReader::Step::End) return;
    if (step == JsonArrayReader::Step::Error) {
      sink.Reject("entry " + std::to_string(number), "malformed JSON, " + error + "; the rest is not read");
      return;
    }
    const std::string where = "entry " + std::to_string(number) + " (line " + std::to_string(line) + ")";
    std::string url = TextOf(entry, "url");
    if (entry.type != JsonValue::Type::Object) {
      sink.Reject(where, "not an object");
    } else if (url.empty()) {
      sink.Reject(where, "no url");
    } else if (SaysNo(entry, "verified")) {
      sink.Reject(where, "not verified");
    } else if (SaysNo(entry, "online")) {
      sink.Reject(where, "not online");
    } else {
      sink.Row({where, std::move(url), TextOf(entry, "target"), AddressesOf(entry)});
    }
  }
}

}  // namespace tarnwick::server

#include "server/PopularityList.h"

#include <algorithm>
#include <charconv>

#include "server/HostNames.h"
#include "server/TextLines.h"

namespace tarnwick::server {

std::optional<PopularityList> PopularityList::Read(const std::filesystem::path& file, std::string& error) {
  const auto text = ReadTextFile(file);
  if (!text) {
    error = "cannot read the popularity list " + file.string();
    return std::nullopt;
  }
  return Parse(*text);
}

PopularityList PopularityList::Parse(std::string_view text) {
  PopularityList list;
  ForEachLine(text, [&list](std::size_t number, std::string_view line) {
    line = TrimBlanks(line);
    auto rank = static_cast<std::uint32_t>(number);
    if (const auto comma = line.find(','); comma != std::string_view::npos) {
      const auto [end, error] = std::from_chars(line.data(), line.data() + comma, rank);
      if (error != std::errc() || end != line.data() + comma) return true;
      line = line.substr(comma + 1);
    }
    const std::string domain = HostOfAuthority(line);
    if (domain.empty()) return true;
    const auto [entry, added] = list.ranks_.emplace(domain, rank);
    if (!added) entry->second = std::min(entry->second, rank);
    return true;
  });
  return list;
}

std::uint32_t PopularityList::RankOf(std::string_view host, const std::vector<std::string>& sharedHosting) const {
  std::uint32_t best = 0;
  for (std::string_view domain = host; !domain.empty(); domain = ParentDomain(domain)) {
    if (domain != host && std::find(sharedHosting.begin(), sharedHosting.end(), domain) != sharedHosting.end()) break;
    const auto found = ranks_.find(domain);
    if (found != ranks_.end() && (best == 0 || found->second < best)) best = found->second;
  }
  return best;
}

}  // namespace tarnwick::server

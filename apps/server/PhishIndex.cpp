#include "server/PhishIndex.h"

#include "server/PhishingPatterns.h"

namespace tarnwick::server {

class IndexBuilder final : public IndexSource {
 public:
  explicit IndexBuilder(PhishIndex& index) : index_(index) {}

  void PhishingSite(std::string_view host) override { SiteOf(host).wholeSite = true; }
  void PhishingPage(std::string_view host, std::string_view siteUrl) override {
    const auto found = pages_.find(host);
    (found != pages_.end() ? found->second : pages_[std::string(host)]).emplace_back(siteUrl);
    ++index_.pageCount_;
  }

  // Turns each host's pages, oldest first as they came, into its header.
  void Finish() {
    for (auto& [host, pages] : pages_) SiteOf(host).patterns = PatternHeader(pages);
    pages_.clear();
  }
  void PhishingHostAddress(std::uint32_t address, std::string_view host) override {
    index_.addressHosts_[address].emplace_back(host);
  }

 private:
  PhishIndex::Site& SiteOf(std::string_view host) {
    const auto found = index_.sites_.find(host);
    return found != index_.sites_.end() ? found->second : index_.sites_[std::string(host)];
  }

  PhishIndex& index_;
  std::unordered_map<std::string, std::vector<std::string>, TextHash, std::equal_to<>> pages_;
};

std::shared_ptr<const PhishIndex> PhishIndex::Load(Storage& storage) {
  auto index = std::make_shared<PhishIndex>();
  IndexBuilder builder(*index);
  index->feedVersion_ = storage.LoadIndex(builder);
  builder.Finish();
  return index;
}

std::string PhishIndex::Describe() const {
  return std::to_string(sites_.size()) + " hosts, " + std::to_string(pageCount_) + " pages (feed version " +
         std::to_string(feedVersion_) + ")";
}

const PhishIndex::Site* PhishIndex::Find(std::string_view host) const {
  const auto found = sites_.find(host);
  return found == sites_.end() ? nullptr : &found->second;
}

const std::vector<std::string>* PhishIndex::HostsAt(std::uint32_t address) const {
  const auto found = addressHosts_.find(address);
  return found == addressHosts_.end() ? nullptr : &found->second;
}

}  // namespace tarnwick::server

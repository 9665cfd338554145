// The web pages of the toolbar's site: the report forms the toolbar opens
// (/report_url?url=, /report_mistake, /bug_report?ua=), the installation page
// and the FAQ with the risk-rating scale. Submitted reports are stored
// before the answer goes out. Every value a page reflects is HTML-escaped.
#pragma once

#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "server/HttpTypes.h"
#include "server/RiskConfig.h"
#include "server/Storage.h"

namespace tarnwick::server {

// Longest accepted form fields, in bytes.
inline constexpr std::size_t kMaxReportUrl = 2048;
inline constexpr std::size_t kMaxReportLine = 200;   // name, e-mail, user agent
inline constexpr std::size_t kMaxReportText = 4000;  // reason

class ReportPages {
 public:
  using Reporter = std::function<void(const std::string&)>;

  // `storage` is a connection used for nothing else; `report` takes the
  // line logged when the storage had to be opened again.
  ReportPages(Storage& storage, const RiskConfig& risk, Reporter report)
      : storage_(storage), risk_(risk), report_(std::move(report)) {}

  // The page for a GET, or nothing when `path` is none of the site's pages.
  std::optional<HttpResponse> Page(std::string_view path, std::string_view query) const;
  // Stores a submitted form (POST); nothing when `path` takes no form.
  std::optional<HttpResponse> Submit(const HttpRequest& request);

 private:
  HttpResponse FaqPage() const;
  // Stores the report where the next reader of the storage finds it.
  std::int64_t Store(const Report& report);

  std::mutex storageMutex_;
  Storage& storage_;
  const RiskConfig& risk_;
  Reporter report_;
};

}  // namespace tarnwick::server

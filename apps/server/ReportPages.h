// The web pages of the toolbar's site: the report forms the toolbar opens
// (/report_url?url=, /report_mistake, /bug_report?ua=), the installation page
// and the FAQ with the risk-rating scale. Submitted reports are stored
// before the answer goes out. Every value a page reflects is HTML-escaped.
#pragma once

#include <mutex>
#include <optional>
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
  // `storage` is a connection used for nothing else.
  ReportPages(Storage& storage, const RiskConfig& risk) : storage_(storage), risk_(risk) {}

  // The page for a GET, or nothing when `path` is none of the site's pages.
  std::optional<HttpResponse> Page(std::string_view path, std::string_view query) const;
  // Stores a submitted form (POST); nothing when `path` takes no form.
  std::optional<HttpResponse> Submit(const HttpRequest& request);

 private:
  HttpResponse FaqPage() const;

  std::mutex storageMutex_;
  Storage& storage_;
  const RiskConfig& risk_;
};

}  // namespace tarnwick::server

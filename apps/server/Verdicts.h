// The answers to /check_url: 403 for a site a feed lists as a whole, 200
// otherwise; X-Risk-Rank always; X-Phishing-Patterns for a host with listed
// pages; and the site-information text the toolbar's strip shows, with its
// links as <a href="...">text</a> and the hosting country as "[CC] Name".
#pragma once

#include <string_view>

#include "server/CheckUrlPath.h"
#include "server/GeoIp.h"
#include "server/HttpTypes.h"
#include "server/LiveIndex.h"
#include "server/Observations.h"
#include "server/RiskModel.h"

namespace tarnwick::server {

class Verdicts {
 public:
  Verdicts(LiveIndex& index, Observations& observations, const RiskModel& risk, const GeoIpDatabase& geoIp)
      : index_(index), observations_(observations), risk_(risk), geoIp_(geoIp) {}

  // `site` is the base address the text's links point at; `client` is the
  // address the question came from.
  HttpResponse Answer(const CheckUrlQuestion& question, std::string_view site, std::string_view client) const;

 private:
  LiveIndex& index_;
  Observations& observations_;
  const RiskModel& risk_;
  const GeoIpDatabase& geoIp_;
};

}  // namespace tarnwick::server

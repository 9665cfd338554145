// Sends each request to the service for its path.
#pragma once

#include <string>

#include "server/DataFiles.h"
#include "server/HttpTypes.h"
#include "server/ProgramReleases.h"
#include "server/ReportPages.h"
#include "server/Verdicts.h"

namespace tarnwick::server {

class Router {
 public:
  // `ownAddress` is the base address links point at when the request's Host
  // header gives none; it is read when requests come, once listening.
  Router(Verdicts& verdicts, DataFiles& files, ProgramReleases& releases, ReportPages& pages,
         const std::string& ownAddress)
      : verdicts_(verdicts), files_(files), releases_(releases), pages_(pages), ownAddress_(ownAddress) {}

  HttpResponse Handle(const HttpRequest& request);

 private:
  HttpResponse Get(const HttpRequest& request);
  // The base address the client reached us by, for links in answers.
  std::string SiteAddress(const HttpRequest& request) const;

  Verdicts& verdicts_;
  DataFiles& files_;
  ProgramReleases& releases_;
  ReportPages& pages_;
  const std::string& ownAddress_;
};

}  // namespace tarnwick::server

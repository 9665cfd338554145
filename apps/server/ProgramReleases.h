// Newer versions of the toolbar program, published in the data folder as
//   releases/<major>.<minor>.<revision>/twtb.dll
// and offered by /check_update/<label>/<major.minor.revision>/<GUID>, with
// the offer's signature at the same path + ".sig".
#pragma once

#include <filesystem>
#include <string_view>

#include "server/HttpTypes.h"
#include "server/UpdateSigning.h"
#include "support/Log.h"

namespace tarnwick::server {

inline constexpr std::string_view kCheckUpdatePrefix = "/check_update/";
inline constexpr const char* kProgramFileName = "twtb.dll";

class ProgramReleases {
 public:
  // `signer` (none: no signatures) signs what is offered.
  ProgramReleases(std::filesystem::path folder, Log& log, const UpdateSigner* signer = nullptr)
      : folder_(std::move(folder)), log_(log), signer_(signer) {}

  // Reads what follows "/check_update/": 200 with the newest published
  // program file when it is newer than the version asked about, 404 when
  // none is, 400 when the path is not of that form.
  HttpResponse CheckUpdate(std::string_view rest) const;

 private:
  std::filesystem::path folder_;
  Log& log_;
  const UpdateSigner* signer_;
};

}  // namespace tarnwick::server

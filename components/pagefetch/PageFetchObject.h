// The Tarnwick.PageFetch.1 object: the retrieval engine and the security
// zones behind the member names the program calls.
#pragma once

#include "Dispatch.h"
#include "Retriever.h"
#include "ZoneMapper.h"

namespace tarnwick::pagefetch {

class PageFetchObject final : public kit::Dispatcher {
 public:
  explicit PageFetchObject(ZoneMapper zones, RetrieverLimits limits = {});

 private:
  Retriever retriever_;
  ZoneMapper zones_;
};

}  // namespace tarnwick::pagefetch

// The Tarnwick.PageFetch.1 object: the retrieval engine and the zone map
// behind the late-bound member names the program calls.
#pragma once

#include <functional>

#include "Retriever.h"
#include "ZoneMap.h"
#include "support/ComponentObject.h"

namespace tarnwick::pagefetch {

class PageFetchObject final : public ComponentObject {
 public:
  // `zoneLists` reads the three host lists each time a zone is asked for, so
  // a changed setting applies at once.
  explicit PageFetchObject(std::function<ZoneLists()> zoneLists, RetrieverLimits limits = {});

  long Invoke(std::string_view member, std::span<Variant> args, Variant& result, std::string& error) override;

 private:
  Retriever retriever_;
  std::function<ZoneLists()> zoneLists_;
};

}  // namespace tarnwick::pagefetch

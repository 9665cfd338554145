// The Tarnwick.PageFetch.1 object: the retrieval engine and the zone map
// behind the member names the program calls.
#pragma once

#include <functional>

#include "Dispatch.h"
#include "Retriever.h"
#include "ZoneMap.h"
#include "settings/SettingsStore.h"

namespace tarnwick::pagefetch {

class PageFetchObject final : public kit::Dispatcher {
 public:
  // `zoneLists` reads the three host lists each time a zone is asked for, so
  // a changed setting applies at once.
  explicit PageFetchObject(std::function<ZoneLists()> zoneLists, RetrieverLimits limits = {});

 private:
  Retriever retriever_;
  std::function<ZoneLists()> zoneLists_;
};

// The host lists as the settings store holds them.
ZoneLists ZoneListsFromSettings(SettingsStore& store);

}  // namespace tarnwick::pagefetch

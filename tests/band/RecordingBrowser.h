// The browser a band is sited in, recording what the core asks of it.
#pragma once

#include <string>
#include <vector>

#include "band/Browser.h"

namespace tarnwick::testing {

class RecordingBrowser final : public Browser {
 public:
  void Stop() override { calls.push_back("Stop"); }
  void Navigate(std::string_view url) override { calls.push_back("Navigate " + std::string(url)); }

  std::vector<std::string> calls;
};

}  // namespace tarnwick::testing

// Browser port: the browser window a band is sited in, as far as the core
// steers it. Each host implements it (Internet Explorer's IWebBrowser2, the
// extension's tab); tests record the calls.
#pragma once

#include <string_view>

namespace tarnwick {

class Browser {
 public:
  virtual ~Browser() = default;
  // Stops the navigation in progress.
  virtual void Stop() = 0;
  virtual void Navigate(std::string_view url) = 0;
};

}  // namespace tarnwick

// Browser port: the browser window a band is sited in, as far as the core
// steers it. Each host implements it (Internet Explorer's IWebBrowser2, a tab
// of the extension, the scripted window of `tarnwick browse`); tests record
// the calls.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "band/Document.h"

namespace tarnwick {

// Navigation flags, numbered as the browser numbers them.
inline constexpr int navNoHistory = 2;

struct NavigateRequest {
  explicit NavigateRequest(std::string url_, int flags_ = 0, std::string targetFrame_ = {},
                           std::vector<std::uint8_t> postData_ = {}, std::string headers_ = {})
      : url(std::move(url_)),
        flags(flags_),
        targetFrame(std::move(targetFrame_)),
        postData(std::move(postData_)),
        headers(std::move(headers_)) {}

  std::string url;
  int flags = 0;
  std::string targetFrame;
  std::vector<std::uint8_t> postData;
  std::string headers;  // extra request header lines, each ended by CR LF
};

// The bars a browser window can show or hide.
enum class BrowserBar { Menu, Status, Tool, Address };

class Browser {
 public:
  virtual ~Browser() = default;
  // Stops the navigation in progress.
  virtual void Stop() = 0;
  virtual void Navigate(const NavigateRequest& request) = 0;
  // The address of the page on show.
  virtual std::string LocationURL() = 0;
  virtual bool Offline() = 0;
  virtual void SetResizable(bool resizable) = 0;
  virtual void ShowBar(BrowserBar bar, bool show) = 0;
  // The height of the browser window in pixels.
  virtual int Height() = 0;
  virtual void SetHeight(int height) = 0;
  // The document on show; null while there is none.
  virtual Document* CurrentDocument() = 0;
};

}  // namespace tarnwick

// The browser a band is sited in, over Internet Explorer's IWebBrowser2: the
// site's SID_SWebBrowserApp service, its DWebBrowserEvents2 connection point
// (every event goes to the band's navigation guard, Cancel written back) and
// the document on show, reached by late binding.
#pragma once

#include <windows.h>
// After windows.h, which they need.
#include <exdisp.h>
#include <ocidl.h>

#include <memory>

#include "band/BandSite.h"
#include "band/Browser.h"
#include "band/Document.h"

namespace tarnwick {
class ToolBar;
}

namespace tarnwick::twtb {

// Who the page's script handlers still reach: cleared when the band goes,
// since a page may hold a handler longer than the band lives.
using BandLink = std::shared_ptr<ToolBar*>;

class ComDocument final : public Document {
 public:
  ComDocument(IDispatch* document, BandLink band);
  ~ComDocument() override;
  ComDocument(const ComDocument&) = delete;
  ComDocument& operator=(const ComDocument&) = delete;

  bool HasForm(std::string_view form) override;
  std::optional<std::string> FieldValue(std::string_view form, std::string_view field) override;
  bool SetFieldValue(std::string_view form, std::string_view field, std::string_view value) override;
  bool FocusField(std::string_view form, std::string_view field) override;
  void WatchSubmit(std::string_view form) override;
  std::optional<std::string> CurrentEventType() override;
  bool HasActiveElement() override;

  IDispatch* object() const { return document_; }

 private:
  IDispatch* document_;
  BandLink band_;
};

class ComBrowser final : public BandSite, public Browser {
 public:
  ComBrowser(IUnknown* site, ToolBar& band);
  ~ComBrowser() override;
  ComBrowser(const ComBrowser&) = delete;
  ComBrowser& operator=(const ComBrowser&) = delete;

  Browser* ConnectBrowser() override;
  void DisconnectBrowser() override;

  void Stop() override;
  void Navigate(const NavigateRequest& request) override;
  std::string LocationURL() override;
  bool Offline() override;
  void SetResizable(bool resizable) override;
  void ShowBar(BrowserBar bar, bool show) override;
  int Height() override;
  void SetHeight(int height) override;
  Document* CurrentDocument() override;

  // Whether `object` is the browser window itself rather than one of its
  // frames.
  bool IsTopLevel(IDispatch* object) const;
  ToolBar& band() { return **band_; }

 private:
  class EventSink;

  IUnknown* site_;
  BandLink band_;
  IWebBrowser2* browser_ = nullptr;
  IConnectionPoint* events_ = nullptr;
  DWORD cookie_ = 0;
  EventSink* sink_ = nullptr;
  std::unique_ptr<ComDocument> document_;
};

}  // namespace tarnwick::twtb

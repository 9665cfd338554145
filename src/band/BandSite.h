// The site a band is placed in by its host: it leads to the browser window
// whose navigations the band guards.
#pragma once

namespace tarnwick {

class Browser;

class BandSite {
 public:
  virtual ~BandSite() = default;
  // The browser of this site (Internet Explorer's SID_SWebBrowserApp
  // service), whose events reach the band from now on; null when the site
  // has none.
  virtual Browser* ConnectBrowser() = 0;
  // The browser's events stop reaching the band.
  virtual void DisconnectBrowser() = 0;
};

}  // namespace tarnwick

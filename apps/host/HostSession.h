// The native host's side of the extension's port: one process-wide object
// over this machine's folders and settings, one band per tab, and one reply
// for each message. Every message becomes band-core calls; what the core
// decides goes back as its records, the strip, the actions the band asked of
// the tab and the notices it showed.
#pragma once

#include <iosfwd>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "ExtensionTab.h"
#include "ExtensionUi.h"
#include "Messages.h"
#include "band/ToolbarProcess.h"

namespace tarnwick::host {

class HostSession {
 public:
  HostSession(Paths& paths, Clock& clock, Shell& shell, const SettingsStoreFactory& makeStore, Endpoints endpoints);
  ~HostSession();
  HostSession(const HostSession&) = delete;
  HostSession& operator=(const HostSession&) = delete;

  // One message (JSON text) in, its reply (JSON text) out. Never throws: a
  // message that cannot be read or handled gets an error reply.
  std::string Handle(std::string_view text);
  nlohmann::json Handle(const Message& message);

  ToolbarProcess& process() { return *process_; }
  ExtensionUi& ui() { return ui_; }
  // The tab's band, started on first use.
  ExtensionTab& Tab(std::int32_t id);
  bool HasTab(std::int32_t id) const { return tabs_.contains(id); }

 private:
  nlohmann::json Hello(const nlohmann::json& body);
  nlohmann::json Open(ExtensionTab& tab);
  nlohmann::json Close(std::int32_t id);
  nlohmann::json Navigate(ExtensionTab& tab, const nlohmann::json& body);
  nlohmann::json Complete(ExtensionTab& tab, const nlohmann::json& body);
  nlohmann::json DocumentLoaded(ExtensionTab& tab, const nlohmann::json& body);
  nlohmann::json Submit(ExtensionTab& tab, const nlohmann::json& body);
  nlohmann::json Popup(ExtensionTab& tab, const nlohmann::json& body);
  nlohmann::json Menu(ExtensionTab& tab, const nlohmann::json& body);
  nlohmann::json Search(ExtensionTab& tab, const nlohmann::json& body);
  nlohmann::json Menus();
  nlohmann::json Options(const nlohmann::json& body);
  nlohmann::json About(const nlohmann::json& body);
  nlohmann::json Trusted(const nlohmann::json& body);
  nlohmann::json Trust(ExtensionTab& tab, const nlohmann::json& body);
  nlohmann::json Resource(const nlohmann::json& body);
  // The site, whether the person trusts it, and the whole list.
  nlohmann::json SiteTrust(const std::string& site);

  ExtensionUi ui_;
  NoDownloadDialog dialog_;
  std::unique_ptr<ToolbarProcess> process_;
  std::map<std::int32_t, std::unique_ptr<ExtensionTab>> tabs_;
};

// Answers the browser's messages until it lets go of the port (0) or the
// stream breaks inside a message (1).
int Serve(HostSession& session, std::istream& in, std::ostream& out);

}  // namespace tarnwick::host

#include "HostSession.h"

#include <algorithm>
#include <istream>
#include <limits>
#include <ostream>

#include "NativeMessaging.h"
#include "ProductInfo.h"
#include "band/BlockPage.h"
#include "band/RecordJson.h"
#include "settings/SiteLists.h"
#include "support/Base64.h"
#include "support/Files.h"
#include "support/Text.h"
#include "support/Version.h"
#include "ui/MenuJson.h"
#include "ui/frmAbout.h"
#include "ui/frmOptions.h"
#include "ui/mdlBitmapMenu.h"

namespace tarnwick::host {
namespace {

using nlohmann::json;

// Far more tabs than a person opens; the limit keeps a runaway sender from
// starting bands without end.
constexpr std::size_t kMaxTabs = 512;
// What a page may describe of its forms.
constexpr std::size_t kMaxForms = 32;
constexpr std::size_t kMaxFields = 256;
constexpr std::size_t kMaxOptionChanges = 256;

// A refusal the reply carries as its error.
struct Refused : std::runtime_error {
  using std::runtime_error::runtime_error;
};

std::string AnsiMember(const json& body, const char* name) { return Utf8ToAnsi(TextMember(body, name)); }

std::string RequiredText(const json& body, const char* name) {
  const std::string text = AnsiMember(body, name);
  if (text.empty()) throw Refused(std::string("the message needs a text ") + name);
  return text;
}

int IntegerIn(const json& body, const char* name, int low, int high, int fallback) {
  const auto value = IntegerMember(body, name);
  if (!value) return fallback;
  return static_cast<int>(std::clamp<std::int64_t>(*value, low, high));
}

std::map<std::string, std::string, std::less<>> FieldsOf(const json& fields) {
  std::map<std::string, std::string, std::less<>> read;
  if (!fields.is_object()) return read;
  for (const auto& [name, value] : fields.items()) {
    if (read.size() == kMaxFields) break;
    if (value.is_string()) read[Utf8ToAnsi(name)] = Utf8ToAnsi(value.get<std::string>());
  }
  return read;
}

const char* KindName(ControlKind kind) {
  switch (kind) {
    case ControlKind::Label: return "label";
    case ControlKind::CheckBox: return "check_box";
    case ControlKind::TextBox: return "text_box";
    case ControlKind::Slider: return "slider";
    case ControlKind::Button: return "button";
  }
  return "";
}

json ControlJson(const ControlView& c) {
  return {{"id", c.id},
          {"kind", KindName(c.kind)},
          {"caption", AnsiToUtf8(c.caption)},
          {"setting", c.setting},
          {"value", c.value},
          {"text", AnsiToUtf8(c.text)},
          {"min", c.min},
          {"max", c.max},
          {"small_step", c.smallStep},
          {"large_step", c.largeStep},
          {"tick_frequency", c.tickFrequency},
          {"value_label", AnsiToUtf8(c.valueLabel)},
          {"unit_label", AnsiToUtf8(c.unitLabel)},
          {"enabled", c.enabled}};
}

json SitesJson(const std::vector<std::string>& sites) {
  json list = json::array();
  for (const auto& site : sites) list.push_back(AnsiToUtf8(site));
  return list;
}

json ErrorReply(const json& id, const std::string& error) {
  return {{"id", id}, {"type", "error"}, {"error", AnsiToUtf8(error)}};
}

std::string Dump(const json& reply) { return reply.dump(-1, ' ', false, json::error_handler_t::replace); }

}  // namespace

HostSession::HostSession(Paths& paths, Clock& clock, Shell& shell, const SettingsStoreFactory& makeStore,
                         Endpoints endpoints)
    : process_(std::make_unique<ToolbarProcess>(HostPorts{paths, clock, ui_, dialog_, shell}, makeStore,
                                                std::move(endpoints))) {
  // The options page may come before any tab.
  process_->LoadOptions();
}

HostSession::~HostSession() {
  for (auto& [id, tab] : tabs_) {
    tab->band.IDeskBand_CloseDW();
    tab->band.IObjectWithSite_SetSite(nullptr);
  }
}

ExtensionTab& HostSession::Tab(std::int32_t id) {
  if (const auto found = tabs_.find(id); found != tabs_.end()) return *found->second;
  if (tabs_.size() >= kMaxTabs) throw Refused("too many tabs");
  auto tab = std::make_unique<ExtensionTab>(*process_);
  tab->startUp = tab->band.IObjectWithSite_SetSite(&tab->browser);
  tab->band.IDeskBand_ShowDW(true);
  return *tabs_.emplace(id, std::move(tab)).first->second;
}

std::string HostSession::Handle(std::string_view text) {
  auto read = ReadMessage(text);
  if (auto* error = std::get_if<MessageError>(&read)) return Dump(ErrorReply(error->id, error->error));
  const Message& message = std::get<Message>(read);
  std::string reply = Dump(Handle(message));
  if (reply.size() > kMaxOutgoingBytes) {
    reply = Dump(ErrorReply(message.id, "the reply is longer than the browser takes"));
  }
  return reply;
}

json HostSession::Handle(const Message& message) {
  const json& body = message.body;
  ui_.ctrlDown = BoolMember(body, "ctrl");
  ui_.agreed = BoolMember(body, "agreed");
  json reply;
  ExtensionTab* tab = nullptr;
  try {
    const std::string& type = message.type;
    if (message.tab && type != "close") tab = &Tab(*message.tab);
    if (type == "hello")
      reply = Hello(body);
    else if (type == "open")
      reply = Open(*tab);
    else if (type == "close")
      reply = Close(*message.tab);
    else if (type == "navigate")
      reply = Navigate(*tab, body);
    else if (type == "complete")
      reply = Complete(*tab, body);
    else if (type == "document")
      reply = DocumentLoaded(*tab, body);
    else if (type == "submit")
      reply = Submit(*tab, body);
    else if (type == "popup")
      reply = Popup(*tab, body);
    else if (type == "menu")
      reply = Menu(*tab, body);
    else if (type == "search")
      reply = Search(*tab, body);
    else if (type == "strip")
      reply = SiteTrust(SiteOfURL(tab->browser.location));
    else if (type == "menus")
      reply = Menus();
    else if (type == "options")
      reply = Options(body);
    else if (type == "about")
      reply = About(body);
    else if (type == "trusted")
      reply = Trusted(body);
    else if (type == "trust")
      reply = Trust(*tab, body);
    else if (type == "resource")
      reply = Resource(body);
  } catch (const std::exception& error) {
    ui_.notices.clear();
    if (tab != nullptr) tab->actions = json::array();
    return ErrorReply(message.id, error.what());
  }
  reply["id"] = message.id;
  reply["type"] = message.type;
  if (!ui_.notices.empty()) reply["notices"] = ui_.TakeNotices();
  if (tab != nullptr) {
    reply["tab"] = *message.tab;
    reply["strip"] = SiteInformationJson(tab->band.strip());
    reply["actions"] = std::exchange(tab->actions, json::array());
  }
  return reply;
}

json HostSession::Hello(const json& body) {
  ui_.screenWidth = IntegerIn(body, "screen_width", 1, 100000, ui_.screenWidth);
  return {{"product", product::kFileDescription},
          {"version", VersionText()},
          {"server", process_->endpoints.server},
          {"site", process_->endpoints.site}};
}

json HostSession::Open(ExtensionTab& tab) {
  const StartUpRecord& record = tab.startUp;
  return {{"started", record.failedComponent.empty()},
          {"failed_component", record.failedComponent.empty() ? json() : json(record.failedComponent)},
          {"toolbar", record.toolbarCreated},
          {"server_hashes", record.serverHashes},
          {"update_check", record.updateCheckStatus}};
}

json HostSession::Close(std::int32_t id) {
  json lines = json::array();
  if (const auto found = tabs_.find(id); found != tabs_.end()) {
    for (const auto& line : found->second->band.IDeskBand_CloseDW()) lines.push_back(line);
    found->second->band.IObjectWithSite_SetSite(nullptr);
    tabs_.erase(found);
  }
  return {{"teardown", lines}};
}

json HostSession::Navigate(ExtensionTab& tab, const json& body) {
  const std::string url = RequiredText(body, "url");
  const std::string post = DecodeB64(TextMember(body, "post_data"));
  bool cancel = false;
  const NavigationRecord record = tab.band.guard().m_oIE_BeforeNavigate2(
      true, url, 0, "", std::vector<std::uint8_t>(post.begin(), post.end()), "", cancel);
  return NavigationJson("navigate", record);
}

json HostSession::Complete(ExtensionTab& tab, const json& body) {
  const std::string url = RequiredText(body, "url");
  tab.browser.Arrive(url);
  return NavigationJson("complete", tab.band.guard().m_oIE_NavigateComplete2(true, url));
}

json HostSession::DocumentLoaded(ExtensionTab& tab, const json& body) {
  const std::string url = RequiredText(body, "url");
  Forms forms;
  if (const auto described = body.find("forms"); described != body.end() && described->is_object()) {
    for (const auto& [name, fields] : described->items()) {
      if (forms.size() == kMaxForms) break;
      forms[Utf8ToAnsi(name)] = FieldsOf(fields);
    }
  }
  if (tab.browser.location != url) tab.browser.Arrive(url);
  tab.browser.document.emplace(std::move(forms), tab.actions);
  tab.band.guard().m_oIE_DocumentComplete(true, url);
  return json::object();
}

json HostSession::Submit(ExtensionTab& tab, const json& body) {
  const std::string form = RequiredText(body, "form");
  TabDocument* document = tab.browser.document ? &*tab.browser.document : nullptr;
  if (document == nullptr || !document->HasForm(form)) throw Refused("the page on show has no form " + form);
  document->Describe(form, FieldsOf(body.value("fields", json::object())));
  tab.band.guard().oForm_onsubmit();
  return {{"saved", process_->options.AutoFillReportForm}};
}

json HostSession::Popup(ExtensionTab& tab, const json& body) {
  if (TabDocument* document = tab.browser.document ? &*tab.browser.document : nullptr) {
    const auto type = body.find("event_type");
    document->eventType =
        type != body.end() && type->is_string() ? std::optional(Utf8ToAnsi(type->get<std::string>())) : std::nullopt;
    document->activeElement = BoolMember(body, "active_element");
  }
  bool cancel = false;
  const PopupRecord record = tab.band.guard().m_oIE_NewWindow2(cancel);
  return {{"allowed", PopupAllowed(record.decision)}, {"decision", PopupDecisionName(record.decision)}};
}

json HostSession::Menu(ExtensionTab& tab, const json& body) {
  const std::string menu = TextMember(body, "menu");
  if (menu != "product" && menu != "client") throw Refused("menu is product or client");
  tab.windows.choice = IntegerIn(body, "choice", 0, std::numeric_limits<int>::max(), 0);
  if (menu == "product") {
    tab.band.ProductMenuClicked();
  } else {
    tab.band.ClientMenuClicked();
  }
  return {{"chosen", tab.windows.choice}};
}

json HostSession::Search(ExtensionTab& tab, const json& body) {
  tab.band.Search(AnsiMember(body, "query"));
  return json::object();
}

json HostSession::Menus() {
  const MenuState& menus = process_->menus;
  json reply = {{"product", menus.productMenu ? MenuJson(*menus.productMenu) : json()},
                {"client", menus.clientMenu ? MenuJson(*menus.clientMenu) : json()},
                {"product_bitmap", EncodeBase64(ProductButtonBitmap())},
                {"client_logo", nullptr}};
  if (!menus.clientLogoFile.empty()) {
    const auto logo = ReadBinaryFile(process_->log, menus.clientLogoFile);
    if (!logo.empty()) reply["client_logo"] = EncodeBase64(std::string(logo.begin(), logo.end()));
  }
  return reply;
}

json HostSession::Options(const json& body) {
  frmOptions form(process_->OptionsForm());
  form.Form_Load();
  json refused = json::array();
  if (const auto changes = body.find("changes"); changes != body.end() && changes->is_array()) {
    std::size_t count = 0;
    for (const auto& change : *changes) {
      if (++count > kMaxOptionChanges) throw Refused("too many changes");
      const std::string id = TextMember(change, "id");
      const std::string press = TextMember(change, "press");
      bool done = false;
      if (press == "cbReset") {
        done = form.Press(press);
      } else if (change.contains("text") && change["text"].is_string()) {
        done = form.SetText(id, Utf8ToAnsi(change["text"].get<std::string>()));
      } else if (const auto value = IntegerMember(change, "value")) {
        done = form.SetValue(id, static_cast<int>(std::clamp<std::int64_t>(*value, -1'000'000, 1'000'000)));
      }
      if (!done) refused.push_back(change);
    }
  }
  const std::string press = TextMember(body, "press");
  if (press == "cbOK" || press == "cbCancel") form.Press(press);
  if (const auto key = IntegerMember(body, "key"); key == frmOptions::kKeyEnter || key == frmOptions::kKeyEscape) {
    form.Form_KeyPress(static_cast<int>(*key));
  }
  json controls = json::array();
  for (const ControlView& control : form.Controls()) controls.push_back(ControlJson(control));
  return {{"caption", AnsiToUtf8(form.Caption)},
          {"heading", frmOptions::kDisplayHeading},
          {"controls", controls},
          {"refused", refused},
          {"closed", form.Closed},
          {"saved", form.Saved}};
}

json HostSession::About(const json& body) {
  frmAbout form(*process_->settings, ui_, process_->shell);
  form.Form_Load();
  if (TextMember(body, "press") == "cmdSysInfo") form.cmdSysInfo_Click();
  return {{"caption", AnsiToUtf8(form.Caption)},          {"title", AnsiToUtf8(form.lblTitle)},
          {"version", AnsiToUtf8(form.lblVersion)},       {"description", AnsiToUtf8(form.lblDescription)},
          {"disclaimer", AnsiToUtf8(form.lblDisclaimer)}, {"ok", AnsiToUtf8(form.cmdOK)},
          {"sys_info", AnsiToUtf8(form.cmdSysInfo)}};
}

json HostSession::Trusted(const json& body) {
  SettingsStore& store = *process_->settings;
  if (const auto sites = body.find("sites"); sites != body.end()) {
    if (!sites->is_array()) throw Refused("sites is a list of host names");
    std::vector<std::string> list;
    for (const auto& site : *sites) {
      if (!site.is_string()) throw Refused("sites is a list of host names");
      list.push_back(Utf8ToAnsi(site.get<std::string>()));
    }
    std::string error;
    if (!SetTrustedSites(store, list, error)) throw Refused(error);
  }
  return {{"sites", SitesJson(TrustedSites(store))}};
}

json HostSession::Trust(ExtensionTab& tab, const json& body) {
  SettingsStore& store = *process_->settings;
  const std::string url = body.contains("url") ? AnsiMember(body, "url") : tab.browser.location;
  const std::string site = SiteOfURL(url);
  if (site.empty()) throw Refused("the page on show has no site");
  if (BoolMember(body, "trusted")) {
    if (!TrustSite(store, url)) throw Refused("\"" + site + "\" is not a host name");
  } else {
    DistrustSite(store, url);
  }
  return SiteTrust(site);
}

json HostSession::SiteTrust(const std::string& site) {
  const auto sites = TrustedSites(*process_->settings);
  std::string list;
  for (const auto& entry : sites) list += entry + ";";
  return {{"site", AnsiToUtf8(site)},
          {"trusted", !site.empty() && SiteListCovers(list, site)},
          {"sites", SitesJson(sites)}};
}

json HostSession::Resource(const json& body) {
  const std::string name = TextMember(body, "name");
  const auto bytes = BandResource(process_->endpoints, name);
  if (!bytes) throw Refused("no resource " + name);
  if (EqualsIgnoreCase(name, kBlockPageResource)) return {{"name", name}, {"text", AnsiToUtf8(*bytes)}};
  return {{"name", name}, {"base64", EncodeBase64(*bytes)}};
}

int Serve(HostSession& session, std::istream& in, std::ostream& out) {
  while (true) {
    const Frame frame = ReadFrame(in);
    std::string reply;
    switch (frame.status) {
      case FrameStatus::End: return 0;
      case FrameStatus::Truncated: return 1;
      case FrameStatus::TooLarge:
        reply = Dump(ErrorReply(nullptr, "the message is longer than " + std::to_string(kMaxIncomingBytes >> 20) +
                                             " MiB (" + std::to_string(frame.length) + " bytes)"));
        break;
      case FrameStatus::Message: reply = session.Handle(frame.body); break;
    }
    if (!WriteFrame(out, reply)) return 1;
  }
}

}  // namespace tarnwick::host

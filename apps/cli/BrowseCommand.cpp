// tarnwick browse: a browser window played from standard input, one event a
// line, over the band; per event it prints what the band did.
#include <charconv>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>

#include <nlohmann/json.hpp>

#include "BandHost.h"
#include "band/NavigationGuard.h"
#include "band/RecordJson.h"
#include "support/Text.h"
#include "ui/MenuJson.h"

namespace tarnwick::cli {
namespace {

using nlohmann::ordered_json;

constexpr const char* kUsage =
    "usage: tarnwick browse [--server URL] [--json] [--answer yes|no] < EVENTS\n"
    "events, one a line:\n"
    "  navigate URL [POST-DATA-FILE]   the person goes to URL (with a form's post data)\n"
    "  redirect URL                    the navigation under way ends up at URL instead\n"
    "  complete                        the navigation under way arrives\n"
    "  popup gesture|active-element|none\n"
    "                                  the page opens a new window: on a click, with an\n"
    "                                  element focused, or by script alone\n"
    "  ctrl down|up                    the Ctrl key is pressed or let go\n"
    "  submit NAME EMAIL               the report form is sent with these values\n"
    "  menu product|client [NUMBER]    a menu button is pressed and item NUMBER chosen\n"
    "                                  (none: the menu is closed)\n"
    "  close                           the window closes (also at the end of the input)\n";

ordered_json Text(std::string_view ansi) { return AnsiToUtf8(ansi); }

void PrintMenu(const ordered_json& entries, const std::string& indent) {
  for (const auto& entry : entries) {
    std::cout << indent << entry["number"].get<int>() << ' ' << entry["caption"].get<std::string>();
    if (entry.contains("items")) {
      std::cout << " >\n";
      PrintMenu(entry["items"], indent + "  ");
    } else {
      std::cout << "  " << entry["link"].get<std::string>() << '\n';
    }
  }
}

// One line of text per fact, for a person reading along.
void PrintText(const ordered_json& report) {
  const auto text = [&](const char* key) { return report.contains(key) && !report[key].is_null(); };
  std::cout << "> " << report["event"].get<std::string>();
  if (text("url")) std::cout << ' ' << report["url"].get<std::string>();
  std::cout << '\n';
  if (text("error")) std::cout << "  error: " << report["error"].get<std::string>() << '\n';
  if (report.contains("started")) {
    if (report["started"].get<bool>()) {
      std::cout << "  started: " << report["server_hashes"].get<int>() << " file hashes from the server, update check "
                << report["update_check"].get<int>() << (report["toolbar"].get<bool>() ? ", toolbar built" : "")
                << '\n';
    } else {
      std::cout << "  start-up stopped: the " << report["failed_component"].get<std::string>()
                << " component is broken\n";
    }
  }
  if (text("not_checked")) std::cout << "  not checked: " << report["not_checked"].get<std::string>() << '\n';
  if (report.contains("checked")) {
    const std::string step = text("step") ? report["step"].get<std::string>() : "";
    if (report["checked"].get<bool>()) {
      std::cout << "  checked" << (step.empty() ? "" : ", objection: " + step) << '\n';
    } else if (!step.empty()) {
      std::cout << "  not checked: " << step << '\n';
    }
  }
  if (text("message")) {
    std::string message = report["message"].get<std::string>();
    for (std::size_t at = 0; (at = message.find("\r\n", at)) != std::string::npos; at += 5) {
      message.replace(at, 2, "\n    ");
    }
    std::cout << "  dialog \"Page Blocked\":\n    " << message
              << "\n  answer: " << (text("answer") ? report["answer"].get<std::string>() : "none") << '\n';
  }
  if (report.contains("cancel"))
    std::cout << "  " << (report["cancel"].get<bool>() ? "cancelled" : "goes ahead") << '\n';
  if (report.value("block_page", false)) std::cout << "  replaced by about:PhishingSite (kept out of history)\n";
  if (text("popup")) std::cout << "  popup " << report["popup"].get<std::string>() << '\n';
  if (text("saved")) std::cout << "  " << report["saved"].get<std::string>() << '\n';
  if (report.contains("report_form")) {
    const auto& form = report["report_form"];
    std::cout << "  report form filled in: name \"" << form["name"].get<std::string>() << "\", e-mail \""
              << form["email"].get<std::string>() << "\", focus on " << form["focused"].get<std::string>() << '\n';
  }
  if (report.contains("menu")) {
    if (report["menu"].is_null()) {
      std::cout << "  no menu\n";
    } else {
      PrintMenu(report["menu"], "  ");
      std::cout << "  chosen: " << report["chosen"].get<int>()
                << (text("link") ? " " + report["link"].get<std::string>() : std::string()) << '\n';
    }
    for (const auto& line : report["dialog"]) std::cout << "  | " << line.get<std::string>() << '\n';
  }
  if (report.contains("teardown")) {
    for (const auto& line : report["teardown"]) std::cout << "  " << line.get<std::string>() << '\n';
  }
  if (report.contains("strip")) {
    const auto& strip = report["strip"];
    std::cout << "  strip: ";
    for (const auto& run : strip["runs"]) {
      const std::string kind = run["kind"].get<std::string>();
      if (kind == "link") {
        std::cout << '[' << run["text"].get<std::string>() << "](" << run["target"].get<std::string>() << ')';
      } else if (kind == "country") {
        std::cout << '[' << run["target"].get<std::string>() << "] " << run["text"].get<std::string>();
      } else {
        std::cout << run["text"].get<std::string>();
      }
    }
    std::cout << "\n  risk rank: " << strip["risk_rank"].get<int>();
    if (!strip["country"].is_null()) {
      std::cout << ", hosted in " << strip["country"].get<std::string>() << " ("
                << strip["country_name"].get<std::string>() << ")";
    }
    std::cout << '\n';
  }
}

class Browse {
 public:
  Browse(BandHost& host, bool json) : host_(host), json_(json) {}

  void Emit(ordered_json report) {
    if (report.contains("cancel") || report.contains("popup"))
      report["strip"] = SiteInformationJson(host_.band.strip());
    if (json_) {
      std::cout << report.dump() << '\n';
    } else {
      PrintText(report);
    }
    std::cout.flush();
  }

  // False when the window is closed.
  bool Event(const std::vector<std::string>& words) {
    const std::string& event = words[0];
    if (event == "navigate" && (words.size() == 2 || words.size() == 3)) return Navigate(words);
    if (event == "redirect" && words.size() == 2) return Redirect(words[1]);
    if (event == "complete" && words.size() == 1) return Complete();
    if (event == "popup" && words.size() == 2) return Popup(words[1]);
    if (event == "ctrl" && words.size() == 2 && (words[1] == "down" || words[1] == "up")) {
      host_.host.ui().ctrlHeld = words[1] == "down";
      Emit({{"event", "ctrl " + words[1]}});
      return true;
    }
    if (event == "submit" && words.size() == 3) return Submit(words[1], words[2]);
    if (event == "menu" && (words.size() == 2 || words.size() == 3) &&
        (words[1] == "product" || words[1] == "client")) {
      return Menu(words);
    }
    if (event == "close" && words.size() == 1) {
      Close();
      return false;
    }
    return Error(event, "not an event or wrong arguments (see tarnwick browse --help)");
  }

  void Close() {
    ordered_json lines = ordered_json::array();
    for (const auto& line : host_.band.IDeskBand_CloseDW()) lines.push_back(line);
    host_.band.IObjectWithSite_SetSite(nullptr);
    Emit({{"event", "close"}, {"teardown", lines}});
  }

  bool failed = false;
  bool blocked = false;

 private:
  bool Error(const std::string& event, const std::string& why) {
    failed = true;
    Emit({{"event", Text(event)}, {"error", why}});
    return true;
  }

  bool Navigate(const std::vector<std::string>& words) {
    std::vector<std::uint8_t> postData;
    if (words.size() == 3) {
      std::ifstream in(words[2], std::ios::binary);
      if (!in) return Error("navigate", "cannot read post data from " + words[2]);
      postData.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    const std::string url = Utf8ToAnsi(words[1]);
    bool cancel = false;
    const NavigationRecord record = host_.band.guard().m_oIE_BeforeNavigate2(true, url, 0, "", postData, "", cancel);
    blocked = blocked || cancel;
    host_.browser.pending = cancel ? std::string() : url;
    Emit(NavigationJson("navigate", record));
    return true;
  }

  bool Redirect(const std::string& url) {
    if (host_.browser.pending.empty()) return Error("redirect", "no navigation is under way");
    host_.browser.pending = Utf8ToAnsi(url);
    Emit({{"event", "redirect"}, {"url", url}});
    return true;
  }

  bool Complete() {
    if (host_.browser.pending.empty()) return Error("complete", "no navigation is under way");
    Arrive(std::exchange(host_.browser.pending, {}));
    FollowRequests();
    return true;
  }

  // The band may send the window elsewhere (the block page, a menu's link):
  // the window goes there at once, as a browser would.
  void FollowRequests() {
    while (!host_.browser.requested.empty()) {
      const NavigateRequest request = host_.browser.requested.front();
      host_.browser.requested.pop_front();
      bool cancel = false;
      const NavigationRecord record = host_.band.guard().m_oIE_BeforeNavigate2(
          true, request.url, request.flags, request.targetFrame, request.postData, request.headers, cancel);
      Emit(NavigationJson("band navigates", record));
      if (!cancel) Arrive(request.url);
    }
  }

  bool Menu(const std::vector<std::string>& words) {
    int choice = 0;
    if (words.size() == 3) {
      const auto [end, error] = std::from_chars(words[2].data(), words[2].data() + words[2].size(), choice);
      if (error != std::errc() || end != words[2].data() + words[2].size() || choice < 0) {
        return Error("menu", "the item is a number");
      }
    }
    TextBandWindows& windows = host_.windows;
    windows.choice = choice;
    windows.popped = nullptr;
    windows.shown.clear();
    if (words[1] == "product") {
      host_.band.ProductMenuClicked();
    } else {
      host_.band.ClientMenuClicked();
    }
    ordered_json report{{"event", "menu " + words[1]}, {"chosen", choice}};
    report["menu"] = windows.popped != nullptr ? ordered_json(MenuJson(*windows.popped)) : ordered_json();
    report["link"] = windows.popped != nullptr && choice != 0 ? Text(windows.popped->WebLink(choice)) : ordered_json();
    ordered_json shown = ordered_json::array();
    for (const auto& line : windows.shown) shown.push_back(Text(line));
    report["dialog"] = shown;
    Emit(report);
    FollowRequests();
    return true;
  }

  void Arrive(const std::string& url) {
    ToolBar& band = host_.band;
    host_.browser.location = url;
    host_.browser.document.emplace(url.starts_with(band.process().endpoints.server + "/report_url?url="));
    const NavigationRecord record = band.guard().m_oIE_NavigateComplete2(true, url);
    blocked = blocked || record.blockPage;
    band.guard().m_oIE_DocumentComplete(true, url);
    ordered_json report = NavigationJson("complete", record);
    if (host_.browser.document->submitWatched) {
      const auto& fields = host_.browser.document->fields;
      report["report_form"] = {{"name", Text(fields.at("name"))},
                               {"email", Text(fields.at("email"))},
                               {"focused", host_.browser.document->focused}};
    }
    Emit(report);
  }

  bool Popup(const std::string& mode) {
    ScriptedDocument* document = host_.browser.document ? &*host_.browser.document : nullptr;
    if (mode != "gesture" && mode != "active-element" && mode != "none") {
      return Error("popup", "popup takes gesture, active-element or none");
    }
    if (document != nullptr) {
      document->eventType = mode == "gesture" ? std::optional<std::string>("click") : std::nullopt;
      document->activeElement = mode == "active-element";
    }
    bool cancel = false;
    const PopupRecord record = host_.band.guard().m_oIE_NewWindow2(cancel);
    Emit({{"event", "popup " + mode}, {"popup", PopupDecisionName(record.decision)}});
    return true;
  }

  bool Submit(const std::string& name, const std::string& email) {
    ScriptedDocument* document = host_.browser.document ? &*host_.browser.document : nullptr;
    if (document == nullptr || !document->HasForm(kReportFormName)) {
      return Error("submit", "the page on show has no report form");
    }
    document->fields["name"] = Utf8ToAnsi(name);
    document->fields["email"] = Utf8ToAnsi(email);
    if (document->submitWatched) host_.band.guard().oForm_onsubmit();
    Emit({{"event", "submit"},
          {"saved", document->submitWatched ? "the band saved the name and e-mail address"
                                            : "the band was not watching this form"}});
    return true;
  }

  BandHost& host_;
  bool json_;
};

std::vector<std::string> Words(const std::string& line) {
  std::istringstream in(line);
  return {std::istream_iterator<std::string>(in), std::istream_iterator<std::string>()};
}

}  // namespace

int RunBrowse(std::vector<std::string> args) {
  if (TakeFlag(args, "--help")) {
    std::cout << kUsage;
    return kExitOk;
  }
  const bool json = TakeFlag(args, "--json");
  const std::string server = TakeOption(args, "--server");
  const std::string answer = TakeOption(args, "--answer");
  if (!args.empty() || (!answer.empty() && answer != "yes" && answer != "no")) {
    std::cerr << "tarnwick: browse takes --server URL, --json and --answer yes|no\n" << kUsage;
    return kExitError;
  }
  BandHost host(server, answer == "yes" ? vbYes : vbNo);
  const bool started = host.Start();
  Browse browse(host, json);
  const StartUpRecord& record = host.startUp;
  browse.Emit(
      {{"event", "start"},
       {"started", started},
       {"failed_component", record.failedComponent.empty() ? ordered_json() : ordered_json(record.failedComponent)},
       {"toolbar", record.toolbarCreated},
       {"server_hashes", record.serverHashes},
       {"update_check", record.updateCheckStatus}});
  if (!started) return kExitError;

  std::string line;
  bool open = true;
  while (open && std::getline(std::cin, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    const auto words = Words(line);
    if (words.empty() || words[0].starts_with('#')) continue;
    open = browse.Event(words);
  }
  if (open) browse.Close();
  return browse.failed ? kExitError : browse.blocked ? kExitFound : kExitOk;
}

}  // namespace tarnwick::cli

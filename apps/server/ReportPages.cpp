#include "server/ReportPages.h"

#include "server/Html.h"
#include "server/QueryString.h"
#include "support/Text.h"

namespace tarnwick::server {
namespace {

// The three forms differ in their path, kind, the field they start with and
// the wording; everything else they share.
struct FormKind {
  std::string_view path;
  std::string_view kind;  // as stored
  std::string_view title;
  std::string_view intro;
  std::string_view firstField;  // "url" or "ua"
  std::string_view firstLabel;
  std::string_view reasonLabel;
};

constexpr FormKind kForms[] = {
    {"/report_url", "phishing", "Report a phishing site",
     "Tell us about a page that tries to steal passwords, card numbers or other personal details.", "url",
     "Address of the page", "Why do you think it is a phishing site?"},
    {"/report_mistake", "mistake", "Report an incorrectly blocked URL",
     "Tell us about a page the toolbar blocked although it is safe.", "url", "Address of the page",
     "Why do you think the page is safe?"},
    {"/bug_report", "bug", "Report a bug", "Tell us what went wrong with the toolbar.", "ua", "Toolbar version",
     "What happened, and what did you expect?"},
};

const FormKind* FormAt(std::string_view path) {
  for (const FormKind& form : kForms) {
    if (form.path == path) return &form;
  }
  return nullptr;
}

std::string TextField(std::string_view name, std::string_view label, std::string_view value) {
  return "<p><label>" + std::string(label) + ":<br><input type=\"text\" name=\"" + std::string(name) +
         "\" size=\"80\" value=\"" + HtmlEscape(value) + "\"></label></p>\n";
}

HttpResponse FormPage(const FormKind& form, std::string_view firstValue) {
  std::string body = "<p>" + std::string(form.intro) + "</p>\n<form name=\"frmReportURL\" id=\"frmReportURL\" " +
                     "method=\"post\" action=\"" + std::string(form.path) + "\">\n" +
                     TextField(form.firstField, form.firstLabel, firstValue) + TextField("name", "Your name", "") +
                     TextField("email", "Your e-mail address", "") + "<p><label>" + std::string(form.reasonLabel) +
                     "<br><textarea name=\"reason\" rows=\"8\" cols=\"80\"></textarea></label></p>\n"
                     "<p><input type=\"submit\" value=\"Send\"></p>\n</form>";
  return HtmlPage(200, form.title, body);
}

// The reason the form cannot be stored, or "" when it can.
std::string Invalid(const FormKind& form, const Report& report) {
  if (form.firstField == "url" && report.url.empty()) return "the address of the page is missing";
  if (form.firstField == "ua" && report.reason.empty()) return "please describe what happened";
  if (report.url.size() > kMaxReportUrl) {
    return "the address is longer than " + std::to_string(kMaxReportUrl) + " characters";
  }
  if (report.name.size() > kMaxReportLine || report.email.size() > kMaxReportLine ||
      report.userAgent.size() > kMaxReportLine) {
    return "a field is longer than " + std::to_string(kMaxReportLine) + " characters";
  }
  if (report.reason.size() > kMaxReportText) {
    return "the text is longer than " + std::to_string(kMaxReportText) + " characters";
  }
  return {};
}

HttpResponse ErrorPage(int status, std::string_view title, std::string_view message) {
  return HtmlPage(status, title, "<p>" + HtmlEscape(message) + "</p>");
}

constexpr const char* kInstallBody =
    "<p>To install the Tarnwick Toolbar again, remove the installed copy first (Control Panel, Add or Remove "
    "Programs), then run the installer of the latest version.</p>\n"
    "<p>The toolbar keeps its block lists and components up to date from this server by itself.</p>";

constexpr const char* kHomeBody =
    "<ul>\n<li><a href=\"/report_url?url=\">Report a phishing site</a></li>\n"
    "<li><a href=\"/report_mistake\">Report an incorrectly blocked URL</a></li>\n"
    "<li><a href=\"/bug_report?ua=\">Report a bug</a></li>\n"
    "<li><a href=\"/help/faq/index.html\">Frequently asked questions</a></li>\n"
    "<li><a href=\"/install/\">Install the toolbar</a></li>\n</ul>";

}  // namespace

HttpResponse ReportPages::FaqPage() const {
  std::string body =
      "<h2><a name=\"riskrating\" id=\"riskrating\"></a>What is the risk rating?</h2>\n"
      "<p>For every site you visit the toolbar shows a risk rating from 0 to 10. 0 means that nothing speaks "
      "against the site; 10 means that it is a known phishing site. In the toolbar's options you can have sites "
      "rated over a chosen level blocked automatically (10 switches this off).</p>\n"
      "<p>The rating starts at a base value; each of the following facts about the site adds its weight (a "
      "negative weight lowers the rating), and the sum is kept between 0 and 10:</p>\n<table>\n";
  const RiskWeights& weights = risk_.weights;
  for (const WeightKey& weight : kWeightKeys) {
    body += "<tr><td>" + std::string(weight.key) + "</td><td>" + std::to_string(weights.*weight.field) + "</td></tr>\n";
  }
  body += "</table>\n<p>Brand names watched for:";
  for (const Brand& brand : risk_.brands) body += " " + HtmlEscape(brand.word);
  body += "</p>";
  return HtmlPage(200, "Frequently asked questions", body);
}

std::optional<HttpResponse> ReportPages::Page(std::string_view path, std::string_view query) const {
  if (const FormKind* form = FormAt(path)) {
    return FormPage(*form, Param(ParseQuery(query), form->firstField).value_or(""));
  }
  if (path == "/") return HtmlPage(200, "Tarnwick Toolbar", kHomeBody);
  if (path == "/install" || path == "/install/") return HtmlPage(200, "Install the Tarnwick Toolbar", kInstallBody);
  if (path == "/help/faq/index.html" || path == "/help/faq/") return FaqPage();
  return std::nullopt;
}

std::int64_t ReportPages::Store(const Report& report) {
  std::lock_guard lock(storageMutex_);
  const auto reopen = [this] {
    const std::string reopened = storage_.ReopenIfReplaced();
    if (!reopened.empty()) report_(reopened);
    return !reopened.empty();
  };
  reopen();
  const std::int64_t number = storage_.AddReport(report);
  // Replaced while it was written: the report went into a file no one will
  // read again, so it goes into the new one too.
  return reopen() ? storage_.AddReport(report) : number;
}

std::optional<HttpResponse> ReportPages::Submit(const HttpRequest& request) {
  const FormKind* form = FormAt(request.path);
  if (form == nullptr) return std::nullopt;
  const std::string_view type = request.Header("Content-Type");
  if (!EqualsIgnoreCase(type.substr(0, type.find(';')), "application/x-www-form-urlencoded")) {
    return ErrorPage(415, "Report not sent", "The form must be sent as application/x-www-form-urlencoded.");
  }
  const Params fields = ParseForm(request.body);
  Report report;
  report.kind = form->kind;
  report.name = Param(fields, "name").value_or("");
  report.email = Param(fields, "email").value_or("");
  report.reason = Param(fields, "reason").value_or("");
  report.clientAddress = request.clientAddress;
  std::string first = Param(fields, form->firstField).value_or("");
  if (form->firstField == "url") {
    report.url = std::move(first);
    report.userAgent = request.Header("User-Agent").substr(0, kMaxReportLine);
  } else {
    report.userAgent = std::move(first);
  }
  if (const std::string reason = Invalid(*form, report); !reason.empty()) {
    return ErrorPage(400, "Report not sent", "The report was not stored: " + reason + ".");
  }
  try {
    const std::int64_t number = Store(report);
    return HtmlPage(200, "Thank you",
                    "<p>Your report (number " + std::to_string(number) + ") has been stored" +
                        (report.url.empty() ? "" : " for " + HtmlEscape(report.url)) + ".</p>");
  } catch (const StorageError& error) {
    return ErrorPage(500, "Report not sent", std::string("The report could not be stored: ") + error.what());
  }
}

}  // namespace tarnwick::server

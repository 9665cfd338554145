#include "ExtensionTab.h"

#include "support/Base64.h"
#include "support/Text.h"

namespace tarnwick::host {

std::map<std::string, std::string, std::less<>>* TabDocument::Field(std::string_view form, std::string_view field) {
  const auto found = forms_.find(form);
  if (found == forms_.end() || !found->second.contains(field)) return nullptr;
  return &found->second;
}

void TabDocument::Describe(std::string_view form, std::map<std::string, std::string, std::less<>> fields) {
  forms_[std::string(form)] = std::move(fields);
}

bool TabDocument::HasForm(std::string_view form) { return forms_.contains(form); }

std::optional<std::string> TabDocument::FieldValue(std::string_view form, std::string_view field) {
  auto* fields = Field(form, field);
  if (fields == nullptr) return std::nullopt;
  return fields->find(field)->second;
}

bool TabDocument::SetFieldValue(std::string_view form, std::string_view field, std::string_view value) {
  auto* fields = Field(form, field);
  if (fields == nullptr) return false;
  fields->find(field)->second = std::string(value);
  actions_.push_back(
      {{"do", "fill"}, {"form", AnsiToUtf8(form)}, {"field", AnsiToUtf8(field)}, {"value", AnsiToUtf8(value)}});
  return true;
}

bool TabDocument::FocusField(std::string_view form, std::string_view field) {
  if (Field(form, field) == nullptr) return false;
  actions_.push_back({{"do", "focus"}, {"form", AnsiToUtf8(form)}, {"field", AnsiToUtf8(field)}});
  return true;
}

void TabDocument::WatchSubmit(std::string_view form) {
  if (HasForm(form)) actions_.push_back({{"do", "watch_submit"}, {"form", AnsiToUtf8(form)}});
}

void TabBrowser::Stop() { actions_.push_back({{"do", "stop"}}); }

void TabBrowser::Navigate(const NavigateRequest& request) {
  const std::string postData(request.postData.begin(), request.postData.end());
  actions_.push_back(
      {{"do", "navigate"},
       {"url", AnsiToUtf8(request.url)},
       {"no_history", (request.flags & navNoHistory) != 0},
       {"target_frame", AnsiToUtf8(request.targetFrame)},
       {"post_data", request.postData.empty() ? nlohmann::json() : nlohmann::json(EncodeBase64(postData))},
       {"headers", AnsiToUtf8(request.headers)}});
}

void TabBrowser::Arrive(const std::string& url) {
  location = url;
  document.emplace(Forms{}, actions_);
}

void TabWindows::OpenAbout(frmAbout&) { actions_.push_back({{"do", "open_about"}}); }

void TabWindows::OpenOptions(frmOptions&) { actions_.push_back({{"do", "open_options"}}); }

void TabWindows::Uninstall(std::string_view commandLine) {
  actions_.push_back({{"do", "uninstall"}, {"command_line", AnsiToUtf8(commandLine)}});
}

}  // namespace tarnwick::host

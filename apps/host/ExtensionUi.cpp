#include "ExtensionUi.h"

#include "support/Text.h"

namespace tarnwick::host {

namespace {
constexpr std::string_view kPageBlocked = "Page Blocked";
constexpr int kButtons = 0xF;
}  // namespace

int ExtensionUi::MessageBox(std::string_view text, std::string_view title, int style) {
  const bool question = (style & kButtons) == vbYesNo;
  if (question && title == kPageBlocked) return agreed ? vbYes : vbNo;
  const int answer = question ? vbNo : vbOK;
  notices.push_back({std::string(title), std::string(text), style, answer});
  return answer;
}

nlohmann::json ExtensionUi::TakeNotices() {
  nlohmann::json list = nlohmann::json::array();
  for (const Notice& notice : notices) {
    list.push_back({{"title", AnsiToUtf8(notice.title)},
                    {"text", AnsiToUtf8(notice.text)},
                    {"question", (notice.style & kButtons) == vbYesNo},
                    {"answer", notice.answer == vbNo ? "no" : "ok"}});
  }
  notices.clear();
  return list;
}

}  // namespace tarnwick::host

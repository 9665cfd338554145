#include "band/RecordJson.h"

#include "support/Text.h"

namespace tarnwick {
namespace {

using nlohmann::ordered_json;

ordered_json Text(std::string_view ansi) { return AnsiToUtf8(ansi); }
ordered_json TextOrNull(std::string_view ansi) { return ansi.empty() ? ordered_json() : Text(ansi); }
ordered_json NameOrNull(const char* name) { return name != nullptr ? ordered_json(name) : ordered_json(); }

}  // namespace

ordered_json SiteInformationJson(const SiteInformation& strip) {
  ordered_json runs = ordered_json::array();
  for (const StripRun& run : strip.runs) {
    const char* kind = run.kind == StripRun::Kind::Link      ? "link"
                       : run.kind == StripRun::Kind::Country ? "country"
                                                             : "text";
    ordered_json item{{"kind", kind}, {"text", Text(run.text)}};
    if (run.kind != StripRun::Kind::Text) item["target"] = Text(run.target);
    runs.push_back(item);
  }
  return {{"text", Text(strip.text)},
          {"risk_rank", strip.riskRank},
          {"risk_link", Text(strip.riskLink)},
          {"country", TextOrNull(strip.countryCode)},
          {"country_name", TextOrNull(strip.countryName)},
          {"runs", runs}};
}

ordered_json NavigationJson(const char* event, const NavigationRecord& record) {
  const CheckOutcome& outcome = record.outcome;
  return {{"event", event},
          {"url", Text(record.url)},
          {"not_checked", NameOrNull(NotCheckedName(record.notChecked))},
          {"checked", outcome.checked},
          {"step", NameOrNull(CheckStepName(outcome.step))},
          {"message", TextOrNull(outcome.message)},
          {"answer", outcome.answer == vbYes  ? ordered_json("yes")
                     : outcome.answer == vbNo ? ordered_json("no")
                                              : ordered_json()},
          {"cancel", record.cancel},
          {"block_page", record.blockPage},
          {"risk_rank", record.riskRank}};
}

}  // namespace tarnwick

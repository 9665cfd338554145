#include "check/mdlXSS.h"

#include "support/Text.h"

namespace tarnwick {

void mdlXSS::SetXSSPatterns(std::string_view text) { patterns_ = Split(text, "\r\n"); }

std::string mdlXSS::DecodeForXSS(std::string& data, Rex& rex) {
  data = rex.Replace(data, R"(\+)", " ", "g");
  data = rex.Replace(data, R"(\%([\da-f]{2}))", "chr(hex($1))", "ige");
  data = rex.Replace(data, R"([\x00-\x08\x0e-\x1f\x7f-\xff])", "", "g");
  data = rex.Replace(data, R"(&#(?:x([\da-f]*)|([\d]*));?)", "chr($1 ? hex($1) : $2)", "ige");
  data = rex.Replace(data, R"(\\)", "", "g");
  return data;
}

bool mdlXSS::Contains_XSS(std::string& data, Rex& rex) {
  log_.DebugLog("(Contains_XSS) Data: " + data);
  if (data.empty() || !options_.BlockXSS) return false;
  DecodeForXSS(data, rex);
  if (!patterns_) return false;
  for (const auto& pattern : *patterns_) {
    if (!pattern.empty() && rex.Test(data, pattern, "si")) return true;
  }
  return false;
}

bool mdlXSS::PostData_Contains_XSS(const std::vector<std::uint8_t>& postData, Rex& rex) {
  std::string text(postData.begin(), postData.end());
  return !text.empty() && Contains_XSS(text, rex);
}

}  // namespace tarnwick

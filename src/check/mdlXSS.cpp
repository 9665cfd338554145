#include "check/mdlXSS.h"

#include <algorithm>

#include "support/Hex.h"
#include "support/PatternSetAnswer.h"
#include "support/Text.h"

namespace tarnwick {
namespace {

bool HasByte(std::string_view data, char byte) { return data.find(byte) != std::string_view::npos; }

// The bytes the control-character step removes: 0x00-0x08, 0x0E-0x1F,
// 0x7F-0xFF.
bool HasControlOrHighByte(std::string_view data) {
  return std::any_of(data.begin(), data.end(), [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte <= 0x08 || (byte >= 0x0E && byte <= 0x1F) || byte >= 0x7F;
  });
}

// A '%' with two hexadecimal digits after it: what the escape step decodes.
bool HasEscape(std::string_view data) {
  for (auto at = data.find('%'); at != std::string_view::npos; at = data.find('%', at + 1)) {
    if (at + 2 < data.size() && HexByte(data[at + 1], data[at + 2])) return true;
  }
  return false;
}

}  // namespace

void mdlXSS::SetXSSPatterns(std::string_view text) { patterns_.Set(Split(text, "\r\n")); }

// Each step runs only where the byte it starts with is there: without it
// the step cannot match, and the text would come back unchanged.
std::string mdlXSS::DecodeForXSS(std::string& data, Rex& rex) {
  if (HasByte(data, '+')) data = rex.Replace(data, R"(\+)", " ", "g");
  if (HasEscape(data)) data = rex.Replace(data, R"(\%([\da-f]{2}))", "chr(hex($1))", "ige");
  if (HasControlOrHighByte(data)) data = rex.Replace(data, R"([\x00-\x08\x0e-\x1f\x7f-\xff])", "", "g");
  if (data.find("&#") != std::string::npos) {
    data = rex.Replace(data, R"(&#(?:x([\da-f]*)|([\d]*));?)", "chr($1 ? hex($1) : $2)", "ige");
  }
  if (HasByte(data, '\\')) data = rex.Replace(data, R"(\\)", "", "g");
  return data;
}

bool mdlXSS::Contains_XSS(std::string& data, Rex& rex, PatternBudget& budget) {
  if (log_.DebugEnabled()) log_.DebugLog("(Contains_XSS) Data: " + data);
  if (data.empty() || !options_.BlockXSS) return false;
  DecodeForXSS(data, rex);
  const std::int32_t first = patterns_.FirstMatch(rex, data, budget);
  if (first == kSetOutOfTime) budget.RanOut("(Contains_XSS)");
  return first >= 0;
}

bool mdlXSS::Contains_XSS(std::string& data, Rex& rex) {
  PatternBudget budget(log_, options_.PatternTimeLimit);
  return Contains_XSS(data, rex, budget);
}

bool mdlXSS::PostData_Contains_XSS(const std::vector<std::uint8_t>& postData, Rex& rex) {
  std::string text(postData.begin(), postData.end());
  return !text.empty() && Contains_XSS(text, rex);
}

}  // namespace tarnwick

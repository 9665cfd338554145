// mdlXSS: whether a URL or the data posted with a navigation carries a
// cross-site scripting attack. The usual disguises (plus signs, percent
// escapes, numeric character references, control characters, backslashes)
// are undone once, in that order, before the patterns of xss.dat are tried.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "check/PatternBudget.h"
#include "check/PatternList.h"
#include "check/Rex.h"
#include "settings/ToolbarOptions.h"
#include "support/Log.h"

namespace tarnwick {

class mdlXSS {
 public:
  mdlXSS(const ToolbarOptions& options, Log& log) : options_(options), log_(log) {}

  void SetXSSPatterns(std::string_view text);
  // With BlockXSS on and `data` non-empty, `data` is left in its decoded form.
  // The patterns draw on `budget`; without one, on a budget of their own.
  bool Contains_XSS(std::string& data, Rex& rex, PatternBudget& budget);
  bool Contains_XSS(std::string& data, Rex& rex);
  bool PostData_Contains_XSS(const std::vector<std::uint8_t>& postData, Rex& rex);
  std::string DecodeForXSS(std::string& data, Rex& rex);

 private:
  const ToolbarOptions& options_;
  Log& log_;
  PatternList patterns_{"xss", "si"};
};

}  // namespace tarnwick

// The cross-site scripting test over a URL or the data posted with it: the
// disguises undone, then the bundled patterns of xss.dat tried, as the
// check does with BlockXSS on.
#include <fstream>
#include <sstream>

#include "FuzzSupport.h"
#include "RexObject.h"
#include "check/mdlXSS.h"

namespace {

std::string BundledPatterns() {
  std::ifstream file(TARNWICK_SOURCE_DIR "/data/xss.dat", std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  if (text.str().empty()) tarnwick::fuzz::Broken("data/xss.dat is there to be read");
  return text.str();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarnwick;
  static rex::RexObject object(fuzz::FuzzLog());
  static Rex rex(object);
  static const ToolbarOptions options = [] {
    ToolbarOptions blocking;
    blocking.BlockXSS = true;
    return blocking;
  }();
  static mdlXSS xss = [] {
    mdlXSS loaded(options, fuzz::FuzzLog());
    loaded.SetXSSPatterns(BundledPatterns());
    return loaded;
  }();

  const std::string_view input = fuzz::AsText(data, size);
  std::string decoded(input);
  xss.DecodeForXSS(decoded, rex);
  // Each step turns a disguise into fewer characters, never more; the last
  // removes every backslash.
  if (decoded.size() > input.size()) fuzz::Broken("decoding never lengthens the text", input);
  if (decoded.find('\\') != std::string::npos) fuzz::Broken("no backslash is left", input);

  std::string checked(input);
  xss.Contains_XSS(checked, rex);
  if (checked != decoded) fuzz::Broken("the test sees the text decoded as DecodeForXSS decodes it", input);
  return 0;
}

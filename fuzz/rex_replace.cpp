// Tarnwick.Rex's Replace over a pattern, a subject and a replacement from the
// input, with PCRE2's limits in place. Input: flag letters, pattern,
// replacement, subject, one a line (the subject takes the rest).
#include "FuzzSupport.h"
#include "RexObject.h"
#include "support/Text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarnwick;
  std::vector<std::string> lines = Split(fuzz::AsText(data, size), "\n");
  if (lines.size() < 4) return 0;
  std::string subject = lines[3];
  for (std::size_t i = 4; i < lines.size(); ++i) subject += "\n" + lines[i];

  rex::RexObject object(fuzz::FuzzLog());
  try {
    const std::string replaced = object.Replace(subject, lines[1], lines[2], lines[0]);
    if (replaced != subject && !object.Test(subject, lines[1], lines[0])) {
      fuzz::Broken("only a pattern that matches replaces", lines[1]);
    }
  } catch (const kit::ComponentError&) {
    // A replacement expression that cannot be read is an error of the call.
  }
  object.Match(subject, lines[1], lines[0]);
  return 0;
}

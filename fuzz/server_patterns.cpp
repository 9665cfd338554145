// The X-Phishing-Patterns header of a server reply: Base64 of patterns
// separated by TABs, tried against the URL being checked. Input: the
// header's value on the first line, the URL on the second.
#include "FuzzSupport.h"
#include "RexObject.h"
#include "check/CheckURL.h"
#include "support/Base64.h"
#include "support/PatternSetAnswer.h"
#include "support/Text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarnwick;
  std::vector<std::string> lines = Split(fuzz::AsText(data, size), "\n");
  lines.resize(2);
  const std::string& header = lines[0];
  const std::string& url = lines[1];

  const std::string decoded = DecodeB64(header);
  if (DecodeB64(EncodeBase64(decoded)) != decoded) fuzz::Broken("Base64 reads back what it wrote", header);

  const std::vector<std::string> patterns = ServerPatterns(header, fuzz::FuzzLog());
  std::size_t bytes = 0;
  for (const auto& pattern : patterns) bytes += pattern.size();
  if (patterns.size() > 1000 || bytes > 64 * 1024) fuzz::Broken("the list is cut to 1,000 patterns and 64 KiB");

  rex::RexObject object(fuzz::FuzzLog());
  Rex rex(object);
  PatternList list("remote", "");
  list.Set(patterns);
  PatternBudget budget(fuzz::FuzzLog(), 60000);
  const std::int32_t first = list.FirstMatch(rex, url, budget);
  if (first >= 0 && patterns[static_cast<std::size_t>(first)].empty()) {
    fuzz::Broken("an empty pattern blocks nothing", header);
  }
  if (first != list.FirstMatchOneByOne(rex, url, budget)) fuzz::Broken("the set answers as the patterns one by one");
  return 0;
}

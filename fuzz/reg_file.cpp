// The settings file: whatever it holds, writing it back and reading it again
// keeps every value and every line it could not read.
#include <tuple>

#include "FuzzSupport.h"
#include "settings/RegFile.h"

namespace {

using Value = std::tuple<std::string, std::uint32_t, std::string>;  // name, type, data

// The values of each section header in `text` (the file's text), in order.
std::vector<std::pair<std::string, std::vector<Value>>> Values(const tarnwick::RegFile& file, std::string_view text) {
  std::vector<std::pair<std::string, std::vector<Value>>> values;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = std::min(text.find('\n', start), text.size());
    std::string_view line = text.substr(start, end - start);
    start = end + 1;
    while (line.ends_with('\r')) line.remove_suffix(1);
    if (line.size() < 2 || !line.starts_with('[') || !line.ends_with(']')) continue;
    const std::string path(line.substr(1, line.size() - 2));
    std::vector<Value> found;
    for (const auto& name : file.ValueNames(path)) {
      const tarnwick::RegValue* value = file.FindValue(path, name);
      found.emplace_back(value->name, value->type, value->data);
    }
    values.emplace_back(path, std::move(found));
  }
  return values;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarnwick;
  const std::string_view content = fuzz::AsText(data, size);
  const RegFile file = RegFile::Parse(content);
  const std::string written = file.Serialize();
  const RegFile reread = RegFile::Parse(written);
  if (Values(reread, written) != Values(file, content)) fuzz::Broken("values survive a write", written);
  if (reread.UnreadableLines() != file.UnreadableLines()) fuzz::Broken("unreadable lines survive a write", written);
  if (reread.Serialize() != written) fuzz::Broken("a written file writes back as it is", written);
  return 0;
}

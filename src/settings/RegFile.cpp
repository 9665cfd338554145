#include "settings/RegFile.h"

#include <cstdio>

#include "settings/SettingsStore.h"
#include "support/Hex.h"
#include "support/Text.h"

namespace tarnwick {
namespace {

// A number of one to `maxDigits` hexadecimal digits, or nullopt.
std::optional<std::uint32_t> ReadHexNumber(std::string_view digits, std::size_t maxDigits) {
  if (digits.empty() || digits.size() > maxDigits) return std::nullopt;
  std::uint32_t number = 0;
  for (char c : digits) {
    const int digit = HexDigitValue(c);
    if (digit < 0) return std::nullopt;
    number = number * 16 + static_cast<std::uint32_t>(digit);
  }
  return number;
}

// Reads a quoted string starting at text[pos] == '"'; leaves pos after the
// closing quote. nullopt on a bad escape or a missing closing quote.
std::optional<std::string> ReadQuoted(std::string_view text, std::size_t& pos) {
  std::string out;
  for (++pos; pos < text.size(); ++pos) {
    const char c = text[pos];
    if (c == '"') {
      ++pos;
      return out;
    }
    if (c != '\\') {
      out += c;
      continue;
    }
    if (++pos >= text.size()) return std::nullopt;
    switch (text[pos]) {
      case '\\': out += '\\'; break;
      case '"': out += '"'; break;
      case 'n': out += '\n'; break;
      case 'r': out += '\r'; break;
      case 't': out += '\t'; break;
      case 'x': {
        if (pos + 2 >= text.size()) return std::nullopt;
        const auto byte = HexByte(text[pos + 1], text[pos + 2]);
        if (!byte) return std::nullopt;
        out += static_cast<char>(*byte);
        pos += 2;
        break;
      }
      default: return std::nullopt;
    }
  }
  return std::nullopt;
}

std::string Quote(std::string_view text) {
  std::string out = "\"";
  for (char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\\' || c == '"') {
      out += '\\';
      out += c;
    } else if (c == '\n') {
      out += "\\n";
    } else if (c == '\r') {
      out += "\\r";
    } else if (c == '\t') {
      out += "\\t";
    } else if (byte < 0x20 || byte >= 0x7F) {
      out += "\\x";
      AppendHexByte(out, byte, HexLetters::Lower);
    } else {
      out += c;
    }
  }
  return out + "\"";
}

std::optional<std::string> ReadHexBytes(std::string_view text) {
  std::string out;
  std::size_t pos = 0;
  while (pos < text.size()) {
    if (pos + 2 > text.size()) return std::nullopt;
    const auto byte = HexByte(text[pos], text[pos + 1]);
    if (!byte) return std::nullopt;
    out += static_cast<char>(*byte);
    pos += 2;
    if (pos < text.size() && text[pos++] != ',') return std::nullopt;
    if (pos == text.size() && text.back() == ',') return std::nullopt;
  }
  return out;
}

std::optional<RegValue> ParseValueLine(std::string_view line) {
  std::size_t pos = 0;
  auto name = ReadQuoted(line, pos);
  if (!name || pos >= line.size() || line[pos] != '=') return std::nullopt;
  const std::string_view rest = line.substr(pos + 1);
  RegValue value{*name, kRegSz, {}};
  if (!rest.empty() && rest[0] == '"') {
    std::size_t at = 0;
    auto text = ReadQuoted(rest, at);
    if (!text || at != rest.size()) return std::nullopt;
    value.data = *text;
    return value;
  }
  if (rest.starts_with("dword:")) {
    const auto number = ReadHexNumber(rest.substr(6), 8);
    if (!number) return std::nullopt;
    value.type = kRegDword;
    for (int i = 0; i < 4; ++i) value.data += static_cast<char>((*number >> (8 * i)) & 0xFF);
    return value;
  }
  std::string_view bytes;
  if (rest.starts_with("hex:")) {
    value.type = kRegBinary;
    bytes = rest.substr(4);
  } else if (rest.starts_with("hex(")) {
    const auto close = rest.find("):");
    if (close == std::string_view::npos) return std::nullopt;
    const auto type = ReadHexNumber(rest.substr(4, close - 4), 8);
    if (!type) return std::nullopt;
    value.type = *type;
    bytes = rest.substr(close + 2);
  } else {
    return std::nullopt;
  }
  auto data = ReadHexBytes(bytes);
  if (!data) return std::nullopt;
  value.data = *data;
  return value;
}

std::string FormatValueLine(const RegValue& value) {
  std::string line = Quote(value.name) + "=";
  if (value.type == kRegSz) return line + Quote(value.data);
  if (value.type == kRegDword && value.data.size() == 4) {
    std::uint32_t number = 0;
    for (int i = 3; i >= 0; --i) number = number << 8 | static_cast<unsigned char>(value.data[i]);
    char text[16];
    std::snprintf(text, sizeof text, "dword:%08x", number);
    return line + text;
  }
  char prefix[24];
  if (value.type == kRegBinary) {
    std::snprintf(prefix, sizeof prefix, "hex:");
  } else {
    std::snprintf(prefix, sizeof prefix, "hex(%x):", value.type);
  }
  line += prefix;
  for (std::size_t i = 0; i < value.data.size(); ++i) {
    if (i > 0) line += ',';
    AppendHexByte(line, static_cast<unsigned char>(value.data[i]), HexLetters::Lower);
  }
  return line;
}

bool IsVerbatim(std::string_view line) {
  return line.find_first_not_of(" \t") == std::string_view::npos || line[0] == ';';
}

}  // namespace

RegFile RegFile::Parse(std::string_view content) {
  RegFile file;
  std::size_t start = 0;
  while (start < content.size()) {
    std::size_t end = content.find('\n', start);
    if (end == std::string_view::npos) end = content.size();
    std::string_view line = content.substr(start, end - start);
    // Every CR before the LF belongs to the line break: a file converted to
    // CR LF twice ends its lines in CR CR LF, and a CR left on a line would
    // make it unreadable now and read differently once written back.
    while (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    start = end + 1;

    if (line.size() >= 2 && line.front() == '[' && line.back() == ']') {
      file.sections_.push_back({std::string(line.substr(1, line.size() - 2)), std::string(line), {}});
      continue;
    }
    if (file.sections_.empty() && (IsVerbatim(line) || line == "REGEDIT4")) {
      file.preamble_.emplace_back(line);
      continue;
    }
    Line entry{std::string(line), std::nullopt};
    if (!IsVerbatim(line)) {
      entry.value = ParseValueLine(line);
      if (!entry.value || file.sections_.empty()) {
        entry.value.reset();
        file.unreadable_.emplace_back(line);
      }
    }
    if (file.sections_.empty()) {
      file.preamble_.push_back(entry.raw);
    } else {
      file.sections_.back().lines.push_back(std::move(entry));
    }
  }
  return file;
}

std::string RegFile::Serialize() const {
  std::string out;
  if (preamble_.empty()) out = "REGEDIT4\n\n";
  for (const auto& line : preamble_) out += line + "\n";
  for (const auto& section : sections_) {
    out += section.header + "\n";
    for (const auto& line : section.lines) out += (line.value ? FormatValueLine(*line.value) : line.raw) + "\n";
  }
  return out;
}

RegFile::Section* RegFile::FindSection(std::string_view path) {
  for (auto& section : sections_) {
    if (EqualsIgnoreCase(section.path, path)) return &section;
  }
  return nullptr;
}

const RegFile::Section* RegFile::FindSection(std::string_view path) const {
  return const_cast<RegFile*>(this)->FindSection(path);
}

bool RegFile::HasKey(std::string_view path) const {
  const std::string below = LowerAscii(path) + "\\";
  for (const auto& section : sections_) {
    if (EqualsIgnoreCase(section.path, path) || LowerAscii(section.path).starts_with(below)) return true;
  }
  return false;
}

void RegFile::AddKey(std::string_view path) {
  if (FindSection(path) != nullptr) return;
  // A blank line between sections, as regedit writes them.
  if (!sections_.empty() && (sections_.back().lines.empty() || !IsVerbatim(sections_.back().lines.back().raw) ||
                             sections_.back().lines.back().value)) {
    sections_.back().lines.push_back({"", std::nullopt});
  }
  sections_.push_back({std::string(path), "[" + std::string(path) + "]", {}});
}

const RegValue* RegFile::FindValue(std::string_view path, std::string_view name) const {
  const Section* section = FindSection(path);
  if (section == nullptr) return nullptr;
  for (const auto& line : section->lines) {
    if (line.value && EqualsIgnoreCase(line.value->name, name)) return &*line.value;
  }
  return nullptr;
}

void RegFile::SetValue(std::string_view path, const RegValue& value) {
  AddKey(path);
  Section& section = *FindSection(path);
  for (auto& line : section.lines) {
    if (line.value && EqualsIgnoreCase(line.value->name, value.name)) {
      line.value->type = value.type;
      line.value->data = value.data;
      return;
    }
  }
  // New values go after the last value, before any trailing blank lines.
  auto at = section.lines.end();
  while (at != section.lines.begin() && !std::prev(at)->value && IsVerbatim(std::prev(at)->raw)) --at;
  section.lines.insert(at, {"", value});
}

bool RegFile::DeleteValue(std::string_view path, std::string_view name) {
  Section* section = FindSection(path);
  if (section == nullptr) return false;
  for (auto it = section->lines.begin(); it != section->lines.end(); ++it) {
    if (it->value && EqualsIgnoreCase(it->value->name, name)) {
      section->lines.erase(it);
      return true;
    }
  }
  return false;
}

std::vector<std::string> RegFile::ValueNames(std::string_view path) const {
  std::vector<std::string> names;
  if (const Section* section = FindSection(path)) {
    for (const auto& line : section->lines) {
      if (line.value) names.push_back(line.value->name);
    }
  }
  return names;
}

}  // namespace tarnwick

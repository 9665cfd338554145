// The registry-format text file that holds one root of the settings store on
// platforms without a registry:
//
//   REGEDIT4
//
//   [HKEY_CURRENT_USER\Software\Tarnwick\Toolbar\Settings]
//   "ServerTimeout"="5"
//   "BarHeight"=dword:00000028
//   "Blob"=hex:01,02,ff
//
// Text is Windows-1252; inside quotes `\\`, `\"`, `\n`, `\r`, `\t` and `\xHH`
// are escapes, and the writer escapes every byte outside printable ASCII.
// Other types are written `hex(N):..`. Lines that cannot be read are kept as
// they stand, in place, so a damaged file never loses its good values.
// Key paths and value names compare without regard to ASCII case.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick {

struct RegValue {
  std::string name;
  std::uint32_t type = 0;
  std::string data;  // raw bytes; a 32-bit number as four little-endian bytes
};

class RegFile {
 public:
  static RegFile Parse(std::string_view content);
  std::string Serialize() const;

  // A key exists when it has a section or a section lies below it.
  bool HasKey(std::string_view path) const;
  void AddKey(std::string_view path);
  const RegValue* FindValue(std::string_view path, std::string_view name) const;
  // Adds the key when missing.
  void SetValue(std::string_view path, const RegValue& value);
  bool DeleteValue(std::string_view path, std::string_view name);
  std::vector<std::string> ValueNames(std::string_view path) const;

  const std::vector<std::string>& UnreadableLines() const { return unreadable_; }

 private:
  struct Line {
    std::string raw;                // kept verbatim when there is no value
    std::optional<RegValue> value;  // re-written from the value when present
  };
  struct Section {
    std::string path;
    std::string header;
    std::vector<Line> lines;
  };

  Section* FindSection(std::string_view path);
  const Section* FindSection(std::string_view path) const;

  std::vector<std::string> preamble_;
  std::vector<Section> sections_;
  std::vector<std::string> unreadable_;
};

}  // namespace tarnwick

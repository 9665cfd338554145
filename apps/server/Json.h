// Just enough JSON for the feeds: a top-level array read one element at a
// time, so a large feed never sits in memory as a whole.
#pragma once

#include <cstddef>
#include <istream>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::server {

struct JsonValue {
  enum class Type { Null, Boolean, Number, String, Array, Object };
  Type type = Type::Null;
  std::string text;               // a string's value (UTF-8), a number as written, "true" or "false"
  std::vector<JsonValue> items;   // an array's elements, or an object's member values
  std::vector<std::string> keys;  // an object's member names, one per item

  // The member of that name of an object, or null.
  const JsonValue* Member(std::string_view name) const;
};

class JsonArrayReader {
 public:
  explicit JsonArrayReader(std::istream& in) : in_(in) {}

  enum class Step { Element, End, Error };
  // The next element of the array and the line it starts on. After an
  // Error (`error` says what is wrong, with its line) nothing more can be read.
  Step Next(JsonValue& element, std::size_t& line, std::string& error);

  static constexpr int kMaxDepth = 64;
  static constexpr std::size_t kMaxStringBytes = 1 << 20;

 private:
  int Peek();
  int Get();
  void SkipSpace();
  bool Fail(const std::string& what);
  bool ParseValue(JsonValue& value, int depth);
  bool ParseString(std::string& text);
  bool ParseNumber(std::string& text);
  bool ParseWord(JsonValue& value);

  std::istream& in_;
  std::size_t line_ = 1;
  bool started_ = false;
  bool finished_ = false;
  std::string error_;
};

}  // namespace tarnwick::server

#include "server/Json.h"

#include <cstdint>

#include "support/Hex.h"

namespace tarnwick::server {
namespace {

void AppendUtf8(std::string& text, std::uint32_t code) {
  if (code < 0x80) {
    text += static_cast<char>(code);
  } else if (code < 0x800) {
    text += static_cast<char>(0xC0 | (code >> 6));
    text += static_cast<char>(0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    text += static_cast<char>(0xE0 | (code >> 12));
    text += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    text += static_cast<char>(0x80 | (code & 0x3F));
  } else {
    text += static_cast<char>(0xF0 | (code >> 18));
    text += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
    text += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    text += static_cast<char>(0x80 | (code & 0x3F));
  }
}

}  // namespace

const JsonValue* JsonValue::Member(std::string_view name) const {
  if (type != Type::Object) return nullptr;
  for (std::size_t i = 0; i < keys.size(); ++i) {
    if (keys[i] == name) return &items[i];
  }
  return nullptr;
}

int JsonArrayReader::Peek() { return in_.peek(); }

int JsonArrayReader::Get() {
  const int c = in_.get();
  if (c == '\n') ++line_;
  return c;
}

void JsonArrayReader::SkipSpace() {
  while (Peek() == ' ' || Peek() == '\t' || Peek() == '\r' || Peek() == '\n') Get();
}

bool JsonArrayReader::Fail(const std::string& what) {
  if (error_.empty()) error_ = "line " + std::to_string(line_) + ": " + what;
  return false;
}

JsonArrayReader::Step JsonArrayReader::Next(JsonValue& element, std::size_t& line, std::string& error) {
  if (finished_) return Step::End;
  SkipSpace();
  if (!started_) {
    started_ = true;
    if (Get() != '[') Fail("the feed is not a JSON array");
    SkipSpace();
    if (error_.empty() && Peek() == ']') {
      Get();
      finished_ = true;
      return Step::End;
    }
  } else if (error_.empty()) {
    const int separator = Get();
    if (separator == ']') {
      finished_ = true;
      return Step::End;
    }
    if (separator != ',') Fail("expected , or ] after an element");
    SkipSpace();
  }
  line = line_;
  element = JsonValue();
  if (error_.empty() && ParseValue(element, 1)) return Step::Element;
  finished_ = true;
  error = error_;
  return Step::Error;
}

bool JsonArrayReader::ParseValue(JsonValue& value, int depth) {
  if (depth > kMaxDepth) return Fail("nested deeper than " + std::to_string(kMaxDepth) + " levels");
  SkipSpace();
  const int c = Peek();
  if (c == '"') {
    value.type = JsonValue::Type::String;
    return ParseString(value.text);
  }
  if (c == '-' || (c >= '0' && c <= '9')) {
    value.type = JsonValue::Type::Number;
    return ParseNumber(value.text);
  }
  if (c == '[' || c == '{') {
    const bool object = Get() == '{';
    value.type = object ? JsonValue::Type::Object : JsonValue::Type::Array;
    const char close = object ? '}' : ']';
    SkipSpace();
    if (Peek() == close) {
      Get();
      return true;
    }
    while (true) {
      if (object) {
        SkipSpace();
        std::string key;
        if (Peek() != '"' || !ParseString(key)) return Fail("expected a member name");
        SkipSpace();
        if (Get() != ':') return Fail("expected : after a member name");
        value.keys.push_back(std::move(key));
      }
      if (!ParseValue(value.items.emplace_back(), depth + 1)) return false;
      SkipSpace();
      const int next = Get();
      if (next == close) return true;
      if (next != ',') return Fail(std::string("expected , or ") + close);
    }
  }
  return ParseWord(value);
}

bool JsonArrayReader::ParseString(std::string& text) {
  Get();  // the opening quote
  while (true) {
    const int c = Get();
    if (c == EOF || c == '\n') return Fail("a string is not closed");
    if (c == '"') return true;
    if (text.size() >= kMaxStringBytes) return Fail("a string is longer than 1 MiB");
    if (c != '\\') {
      text += static_cast<char>(c);
      continue;
    }
    const int escaped = Get();
    switch (escaped) {
      case '"': text += '"'; break;
      case '\\': text += '\\'; break;
      case '/': text += '/'; break;
      case 'b': text += '\b'; break;
      case 'f': text += '\f'; break;
      case 'n': text += '\n'; break;
      case 'r': text += '\r'; break;
      case 't': text += '\t'; break;
      case 'u': {
        std::uint32_t code = 0;
        for (int i = 0; i < 4; ++i) {
          const int digit = Get();
          const int value = digit == EOF ? -1 : HexDigitValue(static_cast<char>(digit));
          if (value < 0) return Fail("a \\u escape needs four hexadecimal digits");
          code = code * 16 + static_cast<std::uint32_t>(value);
        }
        AppendUtf8(text, code);
        break;
      }
      default: return Fail("unknown escape in a string");
    }
  }
}

bool JsonArrayReader::ParseNumber(std::string& text) {
  while (true) {
    const int c = Peek();
    if (!((c >= '0' && c <= '9') || c == '-' || c == '+' || c == '.' || c == 'e' || c == 'E')) break;
    text += static_cast<char>(Get());
  }
  return true;
}

bool JsonArrayReader::ParseWord(JsonValue& value) {
  std::string word;
  while (Peek() >= 'a' && Peek() <= 'z' && word.size() < 5) word += static_cast<char>(Get());
  if (word == "true" || word == "false") {
    value.type = JsonValue::Type::Boolean;
    value.text = word;
    return true;
  }
  if (word == "null") return true;
  return Fail("unexpected input");
}

}  // namespace tarnwick::server

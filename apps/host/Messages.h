// The messages the extension sends its host, read and checked before any of
// them reaches the band: a JSON object with a "type", an optional "id" the
// reply carries back, and a "tab" for the messages about one tab.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include <nlohmann/json.hpp>

namespace tarnwick::host {

struct Message {
  std::string type;
  nlohmann::json id;  // echoed in the reply; null when the message had none
  std::optional<std::int32_t> tab;
  nlohmann::json body;  // the whole object
};

struct MessageError {
  nlohmann::json id;  // as far as it could be read
  std::string error;
};

// Reads one message. Malformed JSON, a value that is not an object, a
// missing or unknown type, or a tab that is not a whole number in range is
// an error, never an exception.
std::variant<Message, MessageError> ReadMessage(std::string_view text);

// Whether the type is one the host answers, and whether it needs a tab.
bool KnownType(std::string_view type);
bool NeedsTab(std::string_view type);

// Members of a message, read defensively: the fallback for a missing member
// or one of another type.
std::string TextMember(const nlohmann::json& body, const char* name, std::string fallback = {});
bool BoolMember(const nlohmann::json& body, const char* name, bool fallback = false);
std::optional<std::int64_t> IntegerMember(const nlohmann::json& body, const char* name);

}  // namespace tarnwick::host

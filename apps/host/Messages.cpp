#include "Messages.h"

#include <algorithm>
#include <array>
#include <limits>

namespace tarnwick::host {
namespace {

struct TypeInfo {
  std::string_view name;
  bool needsTab;
};

constexpr std::array<TypeInfo, 17> kTypes{{
    {"hello", false},
    {"open", true},
    {"close", true},
    {"navigate", true},
    {"complete", true},
    {"document", true},
    {"submit", true},
    {"popup", true},
    {"menu", true},
    {"search", true},
    {"strip", true},
    {"menus", false},
    {"options", false},
    {"about", false},
    {"trusted", false},
    {"trust", true},
    {"resource", false},
}};

const TypeInfo* Find(std::string_view type) {
  const auto it = std::find_if(kTypes.begin(), kTypes.end(), [type](const TypeInfo& t) { return t.name == type; });
  return it == kTypes.end() ? nullptr : &*it;
}

}  // namespace

bool KnownType(std::string_view type) { return Find(type) != nullptr; }
bool NeedsTab(std::string_view type) {
  const TypeInfo* info = Find(type);
  return info != nullptr && info->needsTab;
}

std::variant<Message, MessageError> ReadMessage(std::string_view text) {
  nlohmann::json body = nlohmann::json::parse(text, nullptr, false);
  if (body.is_discarded()) return MessageError{nullptr, "the message is not JSON"};
  if (!body.is_object()) return MessageError{nullptr, "the message is not a JSON object"};
  Message message;
  if (const auto id = body.find("id"); id != body.end()) {
    if (!id->is_number_integer() && !id->is_string()) return MessageError{nullptr, "id is not a number or a text"};
    message.id = *id;
  }
  const auto type = body.find("type");
  if (type == body.end() || !type->is_string()) return MessageError{message.id, "the message has no type"};
  message.type = type->get<std::string>();
  if (!KnownType(message.type)) return MessageError{message.id, "unknown message type \"" + message.type + "\""};
  if (NeedsTab(message.type)) {
    const auto tab = IntegerMember(body, "tab");
    if (!tab || *tab < 0 || *tab > std::numeric_limits<std::int32_t>::max()) {
      return MessageError{message.id, message.type + " needs a tab (a whole number)"};
    }
    message.tab = static_cast<std::int32_t>(*tab);
  }
  message.body = std::move(body);
  return message;
}

std::string TextMember(const nlohmann::json& body, const char* name, std::string fallback) {
  const auto it = body.find(name);
  return it != body.end() && it->is_string() ? it->get<std::string>() : fallback;
}

bool BoolMember(const nlohmann::json& body, const char* name, bool fallback) {
  const auto it = body.find(name);
  return it != body.end() && it->is_boolean() ? it->get<bool>() : fallback;
}

std::optional<std::int64_t> IntegerMember(const nlohmann::json& body, const char* name) {
  const auto it = body.find(name);
  if (it == body.end() || !it->is_number_integer()) return std::nullopt;
  if (it->is_number_unsigned() && it->get<std::uint64_t>() > std::numeric_limits<std::int64_t>::max()) {
    return std::nullopt;
  }
  return it->get<std::int64_t>();
}

}  // namespace tarnwick::host

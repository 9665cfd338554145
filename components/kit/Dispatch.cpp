#include "Dispatch.h"

#include <charconv>
#include <type_traits>

#include "support/Text.h"

namespace tarnwick::kit {

std::string Arguments::Text(std::size_t index) const {
  const Variant* value = Find(index);
  if (value == nullptr) return {};
  return std::visit(
      [index](const auto& v) -> std::string {
        using T = std::decay_t<decltype(v)>;
        if constexpr (std::is_same_v<T, std::string>) {
          return v;
        } else if constexpr (std::is_same_v<T, bool>) {
          return v ? "True" : "False";
        } else if constexpr (std::is_same_v<T, std::int32_t>) {
          return std::to_string(v);
        } else if constexpr (std::is_same_v<T, std::monostate>) {
          return {};
        } else {
          throw ArgumentError("Argument " + std::to_string(index + 1) + " is an array where text is expected");
        }
      },
      *value);
}

std::string_view Arguments::TextView(std::size_t index) {
  const Variant* value = Find(index);
  if (const auto* text = value != nullptr ? std::get_if<std::string>(value) : nullptr) return *text;
  if (index >= kMaxArguments) return {};
  if (!coerced_) coerced_ = std::make_unique<std::array<std::string, kMaxArguments>>();
  (*coerced_)[index] = Text(index);
  return (*coerced_)[index];
}

std::int32_t Arguments::Integer(std::size_t index) const {
  const Variant* value = Find(index);
  if (value == nullptr || std::holds_alternative<std::monostate>(*value)) return 0;
  if (const auto* number = std::get_if<std::int32_t>(value)) return *number;
  if (const auto* flag = std::get_if<bool>(value)) return *flag ? -1 : 0;
  if (const auto* text = std::get_if<std::string>(value)) {
    std::int32_t number = 0;
    const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), number);
    if (error == std::errc() && end == text->data() + text->size()) return number;
  }
  throw ArgumentError("Argument " + std::to_string(index + 1) + " is not a number");
}

const std::vector<std::string>& Arguments::Texts(std::size_t index) const {
  const Variant* value = Find(index);
  const auto* texts = value != nullptr ? std::get_if<std::vector<std::string>>(value) : nullptr;
  if (texts == nullptr) throw ArgumentError("Argument " + std::to_string(index + 1) + " is not a text array");
  return *texts;
}

std::vector<std::uint8_t>& Arguments::Bytes(std::size_t index) {
  if (index >= values_.size()) throw ArgumentError("Argument " + std::to_string(index + 1) + " is missing");
  Variant& value = values_[index];
  if (std::holds_alternative<std::monostate>(value)) value = std::vector<std::uint8_t>();
  auto* bytes = std::get_if<std::vector<std::uint8_t>>(&value);
  if (bytes == nullptr) throw ArgumentError("Argument " + std::to_string(index + 1) + " is not a byte array");
  changed_.set(index);
  return *bytes;
}

void Arguments::Set(std::size_t index, Variant value) {
  if (index >= values_.size()) throw ArgumentError("Argument " + std::to_string(index + 1) + " is missing");
  values_[index] = std::move(value);
  changed_.set(index);
}

Dispatcher::Dispatcher(std::vector<Member> members) : members_(std::move(members)) {
  for (const Member& member : members_) {
    if (member.maxArguments > kMaxArguments || member.minArguments > member.maxArguments) {
      throw std::logic_error("Member " + std::string(member.name) + " declares an impossible argument count");
    }
  }
}

std::optional<std::size_t> Dispatcher::Find(std::string_view name) const {
  // Callers mostly spell the name as the table does.
  for (std::size_t i = 0; i < members_.size(); ++i) {
    if (members_[i].name == name) return i;
  }
  for (std::size_t i = 0; i < members_.size(); ++i) {
    if (EqualsIgnoreCase(members_[i].name, name)) return i;
  }
  return std::nullopt;
}

long Dispatcher::Call(std::size_t index, Arguments& args, Variant& result, std::string& error) {
  if (index >= members_.size()) {
    error = "Object has no member number " + std::to_string(index);
    return kErrMemberNotFound;
  }
  const Member& member = members_[index];
  if (args.size() < member.minArguments || args.size() > member.maxArguments) {
    error = "Wrong number of arguments for " + std::string(member.name);
    return kErrInvalidArgument;
  }
  try {
    result = member.call(args);
    return kInvokeOk;
  } catch (const ArgumentError& failure) {
    error = failure.what();
    return kErrInvalidArgument;
  } catch (const std::exception& failure) {
    error = failure.what();
    return kErrComponent;
  }
}

long Dispatcher::Invoke(std::string_view member, std::span<Variant> args, Variant& result, std::string& error) {
  const auto index = Find(member);
  if (!index) {
    error = "Object doesn't support this property or method: " + std::string(member);
    return kErrMemberNotFound;
  }
  Arguments arguments(args);
  return Call(*index, arguments, result, error);
}

}  // namespace tarnwick::kit

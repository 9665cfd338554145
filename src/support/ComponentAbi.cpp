#include "support/ComponentAbi.h"

#include <type_traits>

namespace tarnwick {
namespace {

TarnwickBytes BytesOf(const void* data, std::size_t size) { return {static_cast<const char*>(data), size}; }

}  // namespace

AbiValue::AbiValue(const Variant& value) {
  std::visit(
      [this](const auto& v) {
        using T = std::decay_t<decltype(v)>;
        if constexpr (std::is_same_v<T, bool>) {
          view_.kind = kTarnwickBool;
          view_.number = v ? 1 : 0;
        } else if constexpr (std::is_same_v<T, std::int32_t>) {
          view_.kind = kTarnwickInt32;
          view_.number = v;
        } else if constexpr (std::is_same_v<T, std::string>) {
          view_.kind = kTarnwickString;
          view_.bytes = BytesOf(v.data(), v.size());
        } else if constexpr (std::is_same_v<T, std::vector<std::string>>) {
          view_.kind = kTarnwickStringArray;
          for (const auto& item : v) items_.push_back(BytesOf(item.data(), item.size()));
          view_.items = items_.data();
          view_.count = items_.size();
        } else if constexpr (std::is_same_v<T, std::vector<std::uint8_t>>) {
          view_.kind = kTarnwickByteArray;
          view_.bytes = BytesOf(v.data(), v.size());
        } else {
          view_.kind = kTarnwickEmpty;
        }
      },
      value);
}

Variant VariantFromAbi(const TarnwickValue& value) {
  const auto text = [](const TarnwickBytes& bytes) { return std::string(bytes.data, bytes.size); };
  switch (value.kind) {
    case kTarnwickBool: return value.number != 0;
    case kTarnwickInt32: return value.number;
    case kTarnwickString: return text(value.bytes);
    case kTarnwickStringArray: {
      std::vector<std::string> items;
      items.reserve(value.count);
      for (std::size_t i = 0; i < value.count; ++i) items.push_back(text(value.items[i]));
      return items;
    }
    case kTarnwickByteArray: {
      const auto* first = reinterpret_cast<const std::uint8_t*>(value.bytes.data);
      return std::vector<std::uint8_t>(first, first + value.bytes.size);
    }
    default: return std::monostate{};
  }
}

void AssignFromAbi(Variant& target, const TarnwickValue& value) {
  switch (value.kind) {
    case kTarnwickBool: target.emplace<bool>(value.number != 0); return;
    case kTarnwickInt32: target.emplace<std::int32_t>(value.number); return;
    case kTarnwickString: AssignText(target, {value.bytes.data, value.bytes.size}); return;
    default: target = VariantFromAbi(value);
  }
}

}  // namespace tarnwick

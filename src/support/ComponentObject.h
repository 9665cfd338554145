// A component object called late-bound, by member name, the way the band
// calls its companion components through IDispatch. The core only ever sees
// this interface: on Windows it wraps an IDispatch pointer, on POSIX an object
// behind a component library's C entry points.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tarnwick {

// Empty (std::monostate) is also "not an array", as a non-match answers.
using Variant =
    std::variant<std::monostate, bool, std::int32_t, std::string, std::vector<std::string>, std::vector<std::uint8_t>>;

// Sets `value` to `text`, reusing the room of the text it already holds:
// arguments set over and over with texts of similar size then allocate
// nothing.
inline void AssignText(Variant& value, std::string_view text) {
  if (auto* held = std::get_if<std::string>(&value)) {
    held->assign(text);
  } else {
    value.emplace<std::string>(text);
  }
}

// Outcome of a call, numbered as Automation numbers them.
inline constexpr long kInvokeOk = 0;
inline constexpr long kErrMemberNotFound = 438;  // "Object doesn't support this property or method"
inline constexpr long kErrInvalidArgument = 5;   // wrong count or type of arguments
inline constexpr long kErrComponent = 440;       // the component raised an error of its own

class ComponentObject {
 public:
  virtual ~ComponentObject() = default;
  // Calls `member` with `args` (which the member may change: arguments pass
  // by reference) and leaves its answer in `result`. Returns kInvokeOk or an
  // error number; `error` then says what went wrong.
  virtual long Invoke(std::string_view member, std::span<Variant> args, Variant& result, std::string& error) = 0;
};

}  // namespace tarnwick

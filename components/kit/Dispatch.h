// Late-bound dispatch over a member table: a component object declares its
// members by name, with how many arguments each takes and the code that
// reads them, and the kit answers calls by name (ComponentObject::Invoke, the
// C entry points) or by number (IDispatch on Windows).
#pragma once

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "support/ComponentObject.h"

namespace tarnwick::kit {

// Raised by a member: the caller gets kErrComponent and the text.
class ComponentError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Raised for an argument of the wrong kind: the caller gets
// kErrInvalidArgument and the text.
class ArgumentError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

inline constexpr std::size_t kMaxArguments = 16;

// A member's arguments. They pass by reference: what a member changes
// through Bytes or Set reaches the caller, on every platform.
class Arguments {
 public:
  explicit Arguments(std::span<Variant> values) : values_(values) {}

  std::size_t size() const { return values_.size(); }
  // Argument `index` as it arrived; empty when absent.
  Variant Get(std::size_t index) const { return index < values_.size() ? values_[index] : Variant(); }
  // Whether argument `index` is there and not empty.
  bool Given(std::size_t index) const {
    return index < values_.size() && !std::holds_alternative<std::monostate>(values_[index]);
  }
  // Argument `index` as text, coerced as Automation coerces: "True"/"False",
  // numbers in decimal, "" for an argument that is absent or empty.
  std::string Text(std::size_t index) const;
  // The same without a copy; good until the member returns.
  std::string_view TextView(std::size_t index);
  // A number, a Boolean (True is -1) or decimal text; absent or empty is 0.
  std::int32_t Integer(std::size_t index) const;
  // The text array at `index`, without a copy; good until the member returns.
  const std::vector<std::string>& Texts(std::size_t index) const;
  // The byte array at `index` for the member to fill (an empty argument
  // becomes one).
  std::vector<std::uint8_t>& Bytes(std::size_t index);
  void Set(std::size_t index, Variant value);
  bool Changed(std::size_t index) const { return index < kMaxArguments && changed_[index]; }

 private:
  const Variant* Find(std::size_t index) const { return index < values_.size() ? &values_[index] : nullptr; }

  std::span<Variant> values_;
  std::bitset<kMaxArguments> changed_;
  // TextView's text of arguments that are no text; made at the first such
  // argument, as most calls pass texts.
  std::unique_ptr<std::array<std::string, kMaxArguments>> coerced_;
};

struct Member {
  std::string_view name;
  std::size_t minArguments;
  std::size_t maxArguments;  // at most kMaxArguments
  std::function<Variant(Arguments&)> call;
};

class Dispatcher : public ComponentObject {
 public:
  explicit Dispatcher(std::vector<Member> members);

  // The member's number in the table, names compared without regard to case
  // as IDispatch compares them.
  std::optional<std::size_t> Find(std::string_view name) const;
  // Calls member number `index`; returns a number of ComponentObject::Invoke
  // (kErrMemberNotFound for a number past the table).
  long Call(std::size_t index, Arguments& args, Variant& result, std::string& error);

  long Invoke(std::string_view member, std::span<Variant> args, Variant& result, std::string& error) final;

 private:
  std::vector<Member> members_;
};

}  // namespace tarnwick::kit

#include "check/Rex.h"

#include <algorithm>
#include <array>

#include "support/ReusedArguments.h"

namespace tarnwick {
namespace {

Variant Text(std::string_view text) { return std::string(text); }

}  // namespace

std::optional<Variant> Rex::Call(std::string_view member, std::span<Variant> args) {
  Variant result;
  std::string error;
  if (object_.Invoke(member, args, result, error) != kInvokeOk) return std::nullopt;
  return result;
}

bool Rex::Test(std::string_view subject, std::string_view pattern, std::string_view flags) {
  const auto answer = Call("Test", ReusedArguments({subject, pattern, flags}));
  return answer && std::holds_alternative<bool>(*answer) && std::get<bool>(*answer);
}

std::optional<std::vector<std::string>> Rex::Match(std::string_view subject, std::string_view pattern,
                                                   std::string_view flags) {
  auto answer = Call("Match", ReusedArguments({subject, pattern, flags}));
  auto* groups = answer ? std::get_if<std::vector<std::string>>(&*answer) : nullptr;
  if (groups == nullptr) return std::nullopt;
  return std::move(*groups);
}

std::string Rex::Replace(std::string_view subject, std::string_view pattern, std::string_view replacement,
                         std::string_view flags) {
  auto answer = Call("Replace", ReusedArguments({subject, pattern, replacement, flags}));
  auto* text = answer ? std::get_if<std::string>(&*answer) : nullptr;
  return text != nullptr ? std::move(*text) : std::string(subject);
}

bool Rex::Prepare(std::string_view pattern, std::string_view flags) {
  std::array args{Text(pattern), Text(flags)};
  const auto answer = Call("Prepare", args);
  return answer && std::holds_alternative<bool>(*answer) && std::get<bool>(*answer);
}

bool Rex::CompileSet(std::string_view name, const std::vector<std::string>& patterns, std::string_view flags,
                     std::string_view tag) {
  std::array args{Text(name), Variant(patterns), Text(flags), Text(tag)};
  const auto answer = Call("CompileSet", args);
  return answer && std::holds_alternative<bool>(*answer) && std::get<bool>(*answer);
}

std::optional<std::int32_t> Rex::FirstMatch(std::string_view name, std::string_view subject, std::string_view tag,
                                            std::chrono::microseconds& time) {
  const auto micros = static_cast<std::int32_t>(std::clamp<std::int64_t>(time.count(), 0, INT32_MAX));
  const auto args = ReusedArguments({name, subject, tag}, micros);
  const auto answer = Call("FirstMatch", args);
  if (const auto* left = std::get_if<std::int32_t>(&args[3]); left != nullptr && *left < micros) {
    time -= std::chrono::microseconds(micros - *left);
  }
  if (!answer || !std::holds_alternative<std::int32_t>(*answer)) return std::nullopt;
  return std::get<std::int32_t>(*answer);
}

std::optional<std::vector<std::string>> Rex::SetInfo(std::string_view name) {
  std::array args{Text(name)};
  auto answer = Call("SetInfo", args);
  auto* info = answer ? std::get_if<std::vector<std::string>>(&*answer) : nullptr;
  if (info == nullptr) return std::nullopt;
  return std::move(*info);
}

}  // namespace tarnwick

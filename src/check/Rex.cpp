#include "check/Rex.h"

#include <array>

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
  std::array args{Text(subject), Text(pattern), Text(flags)};
  const auto answer = Call("Test", args);
  return answer && std::holds_alternative<bool>(*answer) && std::get<bool>(*answer);
}

std::optional<std::vector<std::string>> Rex::Match(std::string_view subject, std::string_view pattern,
                                                   std::string_view flags) {
  std::array args{Text(subject), Text(pattern), Text(flags)};
  auto answer = Call("Match", args);
  auto* groups = answer ? std::get_if<std::vector<std::string>>(&*answer) : nullptr;
  if (groups == nullptr) return std::nullopt;
  return std::move(*groups);
}

std::string Rex::Replace(std::string_view subject, std::string_view pattern, std::string_view replacement,
                         std::string_view flags) {
  std::array args{Text(subject), Text(pattern), Text(replacement), Text(flags)};
  auto answer = Call("Replace", args);
  auto* text = answer ? std::get_if<std::string>(&*answer) : nullptr;
  return text != nullptr ? std::move(*text) : std::string(subject);
}

bool Rex::Prepare(std::string_view pattern, std::string_view flags) {
  std::array args{Text(pattern), Text(flags)};
  const auto answer = Call("Prepare", args);
  return answer && std::holds_alternative<bool>(*answer) && std::get<bool>(*answer);
}

}  // namespace tarnwick

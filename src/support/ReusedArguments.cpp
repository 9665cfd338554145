#include "support/ReusedArguments.h"

#include <array>
#include <stdexcept>

namespace tarnwick {

std::span<Variant> ReusedArguments(std::initializer_list<std::string_view> texts) {
  thread_local std::array<Variant, 4> args;
  if (texts.size() > args.size()) throw std::logic_error("ReusedArguments holds at most four texts");
  std::size_t next = 0;
  for (const std::string_view text : texts) {
    if (auto* held = std::get_if<std::string>(&args[next])) {
      held->assign(text);
    } else {
      args[next] = std::string(text);
    }
    ++next;
  }
  return std::span(args).first(next);
}

}  // namespace tarnwick

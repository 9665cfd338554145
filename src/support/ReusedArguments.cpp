#include "support/ReusedArguments.h"

#include <array>
#include <stdexcept>

namespace tarnwick {

namespace {

thread_local std::array<Variant, 5> args;

std::size_t Place(std::initializer_list<std::string_view> texts) {
  if (texts.size() > 4) throw std::logic_error("ReusedArguments holds at most four texts");
  std::size_t next = 0;
  for (const std::string_view text : texts) AssignText(args[next++], text);
  return next;
}

}  // namespace

std::span<Variant> ReusedArguments(std::initializer_list<std::string_view> texts) {
  return std::span(args).first(Place(texts));
}

std::span<Variant> ReusedArguments(std::initializer_list<std::string_view> texts, std::int32_t number) {
  const std::size_t count = Place(texts);
  args[count].emplace<std::int32_t>(number);
  return std::span(args).first(count + 1);
}

}  // namespace tarnwick

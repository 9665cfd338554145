// The text arguments of frequent component calls, kept from one call to the
// next on each thread so that they reuse the room earlier calls allocated: a
// check makes several calls for each URL, with texts of about the same
// length. Good until the next call on the same thread; calls do not nest (no
// component calls back).
#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>

#include "support/ComponentObject.h"

namespace tarnwick {

// At most four texts, and a number after them where given; the span holds
// them in order.
std::span<Variant> ReusedArguments(std::initializer_list<std::string_view> texts);
std::span<Variant> ReusedArguments(std::initializer_list<std::string_view> texts, std::int32_t number);

}  // namespace tarnwick

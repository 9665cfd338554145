// A run-time error inside a routine: a number and a description, as the
// routine's error trap logs them ("... : " + description + " (" + number + ")").
// It never leaves the routine that traps it.
#pragma once

#include <stdexcept>
#include <string>

namespace tarnwick {

class RoutineError : public std::runtime_error {
 public:
  RoutineError(long number, const std::string& description) : std::runtime_error(description), number_(number) {}
  long number() const { return number_; }

 private:
  long number_;
};

inline constexpr long kErrInvalidProcedureCall = 5;

// The number of any error a routine traps; errors that are not the
// program's own carry number 0.
inline long ErrorNumber(const std::exception& error) {
  const auto* own = dynamic_cast<const RoutineError*>(&error);
  return own != nullptr ? own->number() : 0;
}

// "<description> (<number>)" of any error a routine traps.
inline std::string DescribeError(const std::exception& error) {
  return std::string(error.what()) + " (" + std::to_string(ErrorNumber(error)) + ")";
}

}  // namespace tarnwick

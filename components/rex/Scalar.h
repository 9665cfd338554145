// A value of a replacement expression, with Perl's rules: text or a number,
// converted to the other on demand; an undefined value (a group that took no
// part in the match) is "" as text and 0 as a number.
#pragma once

#include <string>
#include <variant>

namespace tarnwick::rex {

class Scalar {
 public:
  Scalar() = default;
  static Scalar Text(std::string text) { return Scalar(std::move(text)); }
  static Scalar Number(double number) { return Scalar(number); }

  // Numbers as Perl prints them: 65 -> "65", 0.5 -> "0.5".
  std::string AsText() const;
  // Text by its leading number, as Perl reads it: " 12ab" -> 12, "ab" -> 0.
  double AsNumber() const;
  // False for undefined, "", "0" and the number 0; true otherwise.
  bool Truth() const;

 private:
  explicit Scalar(std::string text) : value_(std::move(text)) {}
  explicit Scalar(double number) : value_(number) {}

  std::variant<std::monostate, std::string, double> value_;
};

// The leading decimal number of `text` (blanks, sign, digits, fraction,
// exponent), 0 when there is none.
double LeadingNumber(const std::string& text);

}  // namespace tarnwick::rex

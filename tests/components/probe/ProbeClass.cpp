// Tarnwick.Probe: a component of the tests, whose members exercise every kind
// of value and error the kit carries across the library boundary.
#include "Component.h"
#include "support/Text.h"

namespace tarnwick::kit {
namespace {

class ProbeObject final : public Dispatcher {
 public:
  ProbeObject()
      : Dispatcher({
            // Answers its argument as it arrived.
            {"Echo", 1, 1, [](Arguments& a) -> Variant { return a.Get(0); }},
            // Fills the byte array argument with 0, 1, 2, ... and answers the count.
            {"Fill", 2, 2,
             [](Arguments& a) -> Variant {
               auto& buffer = a.Bytes(0);
               buffer.resize(static_cast<std::size_t>(a.Integer(1)));
               for (std::size_t i = 0; i < buffer.size(); ++i) buffer[i] = static_cast<std::uint8_t>(i);
               return static_cast<std::int32_t>(buffer.size());
             }},
            // Turns the text argument into upper case where it is.
            {"Shout", 1, 1,
             [](Arguments& a) -> Variant {
               a.Set(0, UpperAscii(a.Text(0)));
               return {};
             }},
            {"Fail", 1, 1, [](Arguments& a) -> Variant { throw ComponentError(a.Text(0)); }},
        }) {}
};

}  // namespace

const ComponentClass& ExportedClass() {
  static const ComponentClass probe{
      "Tarnwick.Probe", "{0D6F2A91-5C3B-4E7A-8B14-72E9C05A3F18}", "Tarnwick kit test probe",
      [](ComponentContext&) -> std::unique_ptr<Dispatcher> { return std::make_unique<ProbeObject>(); }};
  return probe;
}

}  // namespace tarnwick::kit

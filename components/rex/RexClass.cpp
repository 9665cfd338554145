// The class tarnwickrex.dll serves.
#include "Component.h"
#include "RexObject.h"

namespace tarnwick::kit {

const ComponentClass& ExportedClass() {
  static const ComponentClass rex{"Tarnwick.Rex", "{6B0E3C52-8F4D-4C1A-9E27-3D5A1F7B9C40}",
                                  "Tarnwick regular-expression component",
                                  [](ComponentContext& context) -> std::unique_ptr<Dispatcher> {
                                    return std::make_unique<rex::RexObject>(context.log());
                                  }};
  return rex;
}

}  // namespace tarnwick::kit

// pagefetch.dll serves one class: Tarnwick.PageFetch.1.
#include "Component.h"
#include "PageFetchObject.h"

namespace tarnwick::kit {

const ComponentClass& ExportedClass() {
  static const ComponentClass pageFetch{
      "Tarnwick.PageFetch.1", "{6B1F2C9E-4D7A-4E83-9C25-0A7E3B5D8F41}", "Tarnwick page retrieval",
      [](ComponentContext& context) -> std::unique_ptr<Dispatcher> {
        return std::make_unique<pagefetch::PageFetchObject>(pagefetch::MakePlatformZoneMapper(context));
      }};
  return pageFetch;
}

}  // namespace tarnwick::kit

#include <windows.h>
// After windows.h, which it needs.
#include <urlmon.h>

#include <memory>

#include "ZoneMapper.h"
#include "support/com_win32.h"

namespace tarnwick::pagefetch {
namespace {

constexpr std::int32_t kInternetZone = 3;

// One security manager for the component's life.
class SecurityZones {
 public:
  SecurityZones() { CoInternetCreateSecurityManager(nullptr, &manager_, 0); }
  ~SecurityZones() {
    if (manager_ != nullptr) manager_->Release();
  }
  SecurityZones(const SecurityZones&) = delete;
  SecurityZones& operator=(const SecurityZones&) = delete;

  // A URL the system cannot place is in the Internet zone, and so checked.
  std::int32_t Map(std::string_view url) {
    DWORD zone = 0;
    if (manager_ == nullptr || FAILED(manager_->MapUrlToZone(WideFromAnsi(url).c_str(), &zone, 0))) {
      return kInternetZone;
    }
    return static_cast<std::int32_t>(zone);
  }

 private:
  IInternetSecurityManager* manager_ = nullptr;
};

}  // namespace

ZoneMapper MakePlatformZoneMapper(kit::ComponentContext&) {
  auto zones = std::make_shared<SecurityZones>();
  return [zones](std::string_view url) { return zones->Map(url); };
}

}  // namespace tarnwick::pagefetch

// What the whole library shares: its module handle, the band class's
// identity, and the counts of live objects and server locks that
// DllCanUnloadNow answers from.
#pragma once

#include <windows.h>

#include <atomic>

namespace tarnwick::twtb {

inline constexpr const char* kToolBarProgId = "prjTarnwickToolbar.Toolbar";
inline constexpr const char* kToolBarClassId = "{2B5D8F50-C543-404F-A39C-C590DEDDB01B}";
inline constexpr const char* kToolBarDescription = "Tarnwick Toolbar";

HINSTANCE ThisModule();
CLSID ToolBarClassId();

// Every COM object of the library counts itself from construction to
// destruction; LockServer counts too. The library may go when both are 0.
void CountObject(int change);
void CountLock(int change);
bool CanUnload();

// Reference counting for the library's COM objects: starts at 1, deletes the
// object at 0, and keeps the library's object count.
class Counted {
 public:
  Counted() { CountObject(+1); }
  virtual ~Counted() { CountObject(-1); }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;

  ULONG AddReference() { return ++references_; }
  ULONG ReleaseReference() {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

 private:
  std::atomic<ULONG> references_{1};
};

}  // namespace tarnwick::twtb

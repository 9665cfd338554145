// The C interface between the core and a component library where there is no
// COM (the POSIX builds). Nothing of C++ crosses it: values travel as plain
// structs that the caller owns for the length of a call, and whatever the
// component hands back (its answer, arguments it changed, an error text) it
// passes to callbacks that copy it at once. So neither side frees memory the
// other allocated, and the two sides need not share a standard library.
//
// A component library exports three functions with C linkage:
//   int32_t TarnwickCreateObject(const char* progId, TarnwickObject* object);
//       0 with `object` filled in, or 429 when the library serves no class
//       of that ProgID (the number Automation gives "can't create object").
//   int32_t DllRegisterServer(void);    0 when its registration was written
//   int32_t DllUnregisterServer(void);  0 when its registration was removed
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "support/ComponentObject.h"

extern "C" {

enum TarnwickValueKind {
  kTarnwickEmpty = 0,
  kTarnwickBool = 1,
  kTarnwickInt32 = 2,
  kTarnwickString = 3,
  kTarnwickStringArray = 4,
  kTarnwickByteArray = 5,
};

struct TarnwickBytes {
  const char* data;
  size_t size;
};

struct TarnwickValue {
  int32_t kind;                // a TarnwickValueKind
  int32_t number;              // kTarnwickBool (0 or 1) and kTarnwickInt32
  TarnwickBytes bytes;         // kTarnwickString and kTarnwickByteArray
  const TarnwickBytes* items;  // kTarnwickStringArray: `count` strings
  size_t count;
};

// Where a component puts what a call gives back; each callback copies.
struct TarnwickReply {
  void* context;
  void (*set_result)(void* context, const TarnwickValue* value);
  void (*set_argument)(void* context, size_t index, const TarnwickValue* value);
  void (*set_error)(void* context, const char* text, size_t size);
};

struct TarnwickObject {
  void* self;
  // Returns one of the numbers of ComponentObject::Invoke.
  int32_t (*invoke)(void* self, const char* member, size_t memberSize, const TarnwickValue* args, size_t argCount,
                    const TarnwickReply* reply);
  void (*release)(void* self);
};

typedef int32_t (*TarnwickCreateObjectFunction)(const char* progId, TarnwickObject* object);
}

namespace tarnwick {

inline constexpr const char* kCreateObjectEntryPoint = "TarnwickCreateObject";

// The C view of a Variant; it points into `value`, which must outlive it.
// Moving keeps the view valid (the item list moves with its buffer).
class AbiValue {
 public:
  explicit AbiValue(const Variant& value);
  AbiValue(AbiValue&&) = default;
  AbiValue& operator=(AbiValue&&) = default;
  AbiValue(const AbiValue&) = delete;
  AbiValue& operator=(const AbiValue&) = delete;
  const TarnwickValue& get() const { return view_; }

 private:
  std::vector<TarnwickBytes> items_;
  TarnwickValue view_{};
};

// A copy of the value; an unknown kind gives an empty Variant.
Variant VariantFromAbi(const TarnwickValue& value);
// The same into `target`, reusing the text it already holds: calls made over
// and over with texts of similar size then allocate nothing.
void AssignFromAbi(Variant& target, const TarnwickValue& value);

}  // namespace tarnwick

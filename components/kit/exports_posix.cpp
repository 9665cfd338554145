// The entry points of a component library on POSIX: the C ABI of
// support/ComponentAbi.h over the library's one class.
#include <dlfcn.h>

#include <filesystem>
#include <vector>

#include "Component.h"
#include "band/ClassRegistry.h"
#include "support/ComponentAbi.h"
#include "support/Text.h"

#define TARNWICK_EXPORT extern "C" __attribute__((visibility("default")))

TARNWICK_EXPORT int32_t TarnwickCreateObject(const char* progId, TarnwickObject* object);
TARNWICK_EXPORT int32_t DllRegisterServer();
TARNWICK_EXPORT int32_t DllUnregisterServer();

namespace tarnwick::kit {
namespace {

struct ExportedObject {
  ComponentContext context;  // outlives the object
  std::unique_ptr<Dispatcher> object = ExportedClass().create(context);
  // The arguments of the call under way, kept from one call to the next so
  // that their texts reuse what earlier calls allocated. An object serves
  // one caller at a time, and no member calls back across the interface.
  std::vector<Variant> arguments;
};

void Reply(const TarnwickReply& reply, const Variant& result, const Arguments& arguments,
           const std::vector<Variant>& values) {
  const AbiValue answer(result);
  reply.set_result(reply.context, &answer.get());
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (!arguments.Changed(i)) continue;
    const AbiValue changed(values[i]);
    reply.set_argument(reply.context, i, &changed.get());
  }
}

int32_t Invoke(void* self, const char* member, size_t memberSize, const TarnwickValue* args, size_t argCount,
               const TarnwickReply* reply) {
  std::string error;
  long status = kErrComponent;
  try {
    auto& exported = *static_cast<ExportedObject*>(self);
    Dispatcher& object = *exported.object;
    std::vector<Variant>& values = exported.arguments;
    values.resize(argCount);
    for (size_t i = 0; i < argCount; ++i) AssignFromAbi(values[i], args[i]);
    Arguments arguments(values);
    Variant result;
    const auto index = object.Find({member, memberSize});
    if (!index) {
      error = "Object doesn't support this property or method: " + std::string(member, memberSize);
      status = kErrMemberNotFound;
    } else {
      status = object.Call(*index, arguments, result, error);
    }
    if (status == kInvokeOk) Reply(*reply, result, arguments, values);
  } catch (const std::exception& failure) {  // nothing C++ may cross the boundary
    error = failure.what();
    status = kErrComponent;
  }
  if (status != kInvokeOk) reply->set_error(reply->context, error.data(), error.size());
  return static_cast<int32_t>(status);
}

void Release(void* self) { delete static_cast<ExportedObject*>(self); }

// This library's own file, as the loader opened it.
std::filesystem::path ThisLibraryFile() {
  Dl_info info{};
  if (::dladdr(reinterpret_cast<void*>(&DllRegisterServer), &info) == 0 || info.dli_fname == nullptr) return {};
  return std::filesystem::absolute(info.dli_fname);
}

}  // namespace
}  // namespace tarnwick::kit

using namespace tarnwick;

int32_t TarnwickCreateObject(const char* progId, TarnwickObject* object) {
  if (progId == nullptr || object == nullptr || !EqualsIgnoreCase(kit::ExportedClass().progId, progId)) return 429;
  try {
    *object = {new kit::ExportedObject, &kit::Invoke, &kit::Release};
    return 0;
  } catch (...) {
    return static_cast<int32_t>(kErrComponent);
  }
}

int32_t DllRegisterServer() {
  try {
    const auto& exported = kit::ExportedClass();
    kit::ComponentContext context;
    const ClassRegistration registration{std::string(exported.progId), std::string(exported.clsid),
                                         std::string(exported.description), kit::ThisLibraryFile()};
    return static_cast<int32_t>(WriteClassRegistration(context.settings(), registration));
  } catch (...) {
    return static_cast<int32_t>(kErrComponent);
  }
}

int32_t DllUnregisterServer() {
  try {
    const auto& exported = kit::ExportedClass();
    kit::ComponentContext context;
    return static_cast<int32_t>(RemoveClassRegistration(context.settings(), exported.progId, exported.clsid));
  } catch (...) {
    return static_cast<int32_t>(kErrComponent);
  }
}

#include "band/ComponentFactory.h"

#include <cstdint>
#include <string>

#include "band/CreateObject.h"
#include "support/DynamicLibrary.h"

namespace tarnwick {
namespace {

// DllRegisterServer and DllUnregisterServer: no arguments, 0 on success.
using RegistrationEntryPoint = std::int32_t (*)();

}  // namespace

std::unique_ptr<ComponentObject> NewObject(ToolbarProcess& process, const std::filesystem::path& path,
                                           std::string_view progId) {
  std::unique_ptr<ComponentObject> object;
  std::string description;
  const long error = CreateObject(*process.settings, progId, object, description);
  if (error == 0) return object;
  if (error != kErrCannotCreateObject) {
    process.log.WriteLog("(NewObject) Error: " + description);
    return nullptr;
  }
  process.log.DebugLog("(NewObject) Attempting to re-register DLL");
  RegisterDLL(process, path, true);
  if (CreateObject(*process.settings, progId, object, description) == 0) return object;
  process.log.WriteLog("Failed to create " + std::string(progId) + " object after re-registering DLL - giving up");
  return nullptr;
}

bool RegisterDLL(ToolbarProcess& process, const std::filesystem::path& path, bool registerServer) {
  const std::string entryPoint = registerServer ? "DllRegisterServer" : "DllUnregisterServer";
  std::string reason;
  const auto library = LoadDynamicLibrary(path, reason);
  if (!library) return false;
  const auto call = library->Find<RegistrationEntryPoint>(entryPoint);
  if (call == nullptr) return false;
  if (call() != 0) {
    process.log.WriteLog("Failed to " + entryPoint + " " + path.string());
    return false;
  }
  return true;
}

}  // namespace tarnwick

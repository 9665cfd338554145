#include <utility>
#include <vector>

#include "band/ClassRegistry.h"
#include "band/CreateObject.h"
#include "support/ComponentAbi.h"
#include "support/DynamicLibrary.h"
#include "support/Files.h"

namespace tarnwick {
namespace {

// Collects what the component hands back during one call. Changed arguments
// are applied after the call returns, so the component never sees its
// arguments change under it.
struct ReplyCollector {
  Variant& result;
  std::string& error;
  std::vector<std::pair<std::size_t, Variant>> changed;

  static void SetResult(void* context, const TarnwickValue* value) {
    AssignFromAbi(static_cast<ReplyCollector*>(context)->result, *value);
  }
  static void SetArgument(void* context, std::size_t index, const TarnwickValue* value) {
    static_cast<ReplyCollector*>(context)->changed.emplace_back(index, VariantFromAbi(*value));
  }
  static void SetError(void* context, const char* text, std::size_t size) {
    static_cast<ReplyCollector*>(context)->error.assign(text, size);
  }
};

class LibraryObject final : public ComponentObject {
 public:
  LibraryObject(std::unique_ptr<DynamicLibrary> library, TarnwickObject object)
      : library_(std::move(library)), object_(object) {}
  ~LibraryObject() override { object_.release(object_.self); }
  LibraryObject(const LibraryObject&) = delete;
  LibraryObject& operator=(const LibraryObject&) = delete;

  long Invoke(std::string_view member, std::span<Variant> args, Variant& result, std::string& error) override {
    // The views of the arguments keep their room from one call to the next,
    // so a call that passes texts and numbers allocates nothing here. The
    // object serves one caller at a time.
    views_.clear();
    values_.clear();
    for (const Variant& arg : args) values_.push_back(views_.emplace_back(arg).get());
    ReplyCollector collector{result, error, {}};
    const TarnwickReply reply{&collector, &ReplyCollector::SetResult, &ReplyCollector::SetArgument,
                              &ReplyCollector::SetError};
    const long status =
        object_.invoke(object_.self, member.data(), member.size(), values_.data(), values_.size(), &reply);
    if (status != kInvokeOk) result = std::monostate{};
    for (auto& [index, value] : collector.changed) {
      if (index < args.size()) args[index] = std::move(value);
    }
    return status;
  }

 private:
  std::unique_ptr<DynamicLibrary> library_;  // unloaded after the object is released
  TarnwickObject object_;
  std::vector<AbiValue> views_;
  std::vector<TarnwickValue> values_;
};

}  // namespace

long CreateObject(SettingsStore& store, std::string_view progId, std::unique_ptr<ComponentObject>& object,
                  std::string& description) {
  const std::string name(progId);
  const auto file = RegisteredServerFile(store, progId);
  if (!file) {
    description = "ActiveX component can't create object: " + name + " is not registered";
    return kErrCannotCreateObject;
  }
  if (!FileExists(*file)) {
    description = "ActiveX component can't create object: " + file->string() + " is missing";
    return kErrCannotCreateObject;
  }
  std::string reason;
  auto library = LoadDynamicLibrary(*file, reason);
  if (!library) {
    description = "Error in loading DLL " + file->string() + ": " + reason;
    return kErrLoadingDll;
  }
  const auto create = library->Find<TarnwickCreateObjectFunction>(kCreateObjectEntryPoint);
  if (create == nullptr) {
    description = std::string("Can't find DLL entry point ") + kCreateObjectEntryPoint + " in " + file->string();
    return kErrDllEntryPoint;
  }
  TarnwickObject created{};
  const long status = create(name.c_str(), &created);
  if (status != 0) {
    description = "ActiveX component can't create object: " + file->string() + " has no class " + name;
    return status;
  }
  object = std::make_unique<LibraryObject>(std::move(library), created);
  return 0;
}

}  // namespace tarnwick

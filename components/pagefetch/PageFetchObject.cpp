#include "PageFetchObject.h"

namespace tarnwick::pagefetch {
namespace {

// The argument's text; members take strings (the buffer aside).
const std::string* Text(std::span<Variant> args, std::size_t index) { return std::get_if<std::string>(&args[index]); }

}  // namespace

PageFetchObject::PageFetchObject(std::function<ZoneLists()> zoneLists, RetrieverLimits limits)
    : retriever_(limits), zoneLists_(std::move(zoneLists)) {}

long PageFetchObject::Invoke(std::string_view member, std::span<Variant> args, Variant& result, std::string& error) {
  const auto wrongArguments = [&] {
    error = "Wrong number or type of arguments for " + std::string(member);
    return kErrInvalidArgument;
  };
  const auto texts = [&](std::size_t count) {
    if (args.size() != count) return false;
    for (std::size_t i = 0; i < count; ++i) {
      if (Text(args, i) == nullptr) return false;
    }
    return true;
  };

  if (member == "RetrieveAsync") {
    if (!texts(3)) return wrongArguments();
    result = retriever_.RetrieveAsync(*Text(args, 0), *Text(args, 1), *Text(args, 2));
  } else if (member == "RetrieveAsyncPost") {
    if (!texts(4)) return wrongArguments();
    result = retriever_.RetrieveAsyncPost(*Text(args, 0), *Text(args, 1), *Text(args, 2), *Text(args, 3));
  } else if (member == "RetrieveAsyncCompleted") {
    if (!texts(1)) return wrongArguments();
    result = retriever_.RetrieveAsyncCompleted(*Text(args, 0));
  } else if (member == "RetrieveAsyncHeaders") {
    if (!texts(1)) return wrongArguments();
    result = retriever_.RetrieveAsyncHeaders(*Text(args, 0));
  } else if (member == "RetrieveAsyncPageSize") {
    if (!texts(1)) return wrongArguments();
    result = retriever_.RetrieveAsyncPageSize(*Text(args, 0));
  } else if (member == "RetrieveAsyncPage") {
    auto* buffer = args.size() == 2 ? std::get_if<std::vector<std::uint8_t>>(&args[1]) : nullptr;
    if (buffer == nullptr || Text(args, 0) == nullptr) return wrongArguments();
    retriever_.RetrieveAsyncPage(*Text(args, 0), *buffer);
    result = std::monostate{};
  } else if (member == "RetrieveAsyncFinish") {
    if (!texts(1)) return wrongArguments();
    retriever_.RetrieveAsyncFinish(*Text(args, 0));
    result = std::monostate{};
  } else if (member == "RetrieveAsyncWait") {
    const auto* milliseconds = args.size() == 1 ? std::get_if<std::int32_t>(&args[0]) : nullptr;
    if (milliseconds == nullptr) return wrongArguments();
    retriever_.RetrieveAsyncWait(*milliseconds);
    result = std::monostate{};
  } else if (member == "MapZone") {
    if (!texts(1)) return wrongArguments();
    result = MapZone(*Text(args, 0), zoneLists_());
  } else {
    error = "Object doesn't support this property or method: " + std::string(member);
    return kErrMemberNotFound;
  }
  return kInvokeOk;
}

}  // namespace tarnwick::pagefetch

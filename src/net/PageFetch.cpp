#include "net/PageFetch.h"

#include <array>

#include "support/ReusedArguments.h"

namespace tarnwick {
namespace {

template <class T>
T As(const Variant& value, const char* member) {
  if (const T* typed = std::get_if<T>(&value)) return *typed;
  throw RoutineError(kErrInvalidArgument, std::string("Unexpected answer type from ") + member);
}

}  // namespace

Variant PageFetch::Call(const char* member, std::span<Variant> args) {
  Variant result;
  std::string error;
  if (const long number = object_.Invoke(member, args, result, error); number != kInvokeOk) {
    throw RoutineError(number, error);
  }
  return result;
}

std::string PageFetch::RetrieveAsync(const std::string& url, const std::string& agent, const std::string& headers) {
  std::array<Variant, 3> args{url, agent, headers};
  return As<std::string>(Call("RetrieveAsync", args), "RetrieveAsync");
}

std::string PageFetch::RetrieveAsyncPost(const std::string& url, const std::string& agent, const std::string& headers,
                                         const std::string& postData) {
  std::array<Variant, 4> args{url, agent, headers, postData};
  return As<std::string>(Call("RetrieveAsyncPost", args), "RetrieveAsyncPost");
}

std::int32_t PageFetch::RetrieveAsyncCompleted(const std::string& url) {
  std::array<Variant, 1> args{url};
  return As<std::int32_t>(Call("RetrieveAsyncCompleted", args), "RetrieveAsyncCompleted");
}

std::string PageFetch::RetrieveAsyncHeaders(const std::string& url) {
  std::array<Variant, 1> args{url};
  return As<std::string>(Call("RetrieveAsyncHeaders", args), "RetrieveAsyncHeaders");
}

std::int32_t PageFetch::RetrieveAsyncPageSize(const std::string& url) {
  std::array<Variant, 1> args{url};
  return As<std::int32_t>(Call("RetrieveAsyncPageSize", args), "RetrieveAsyncPageSize");
}

std::optional<std::int32_t> PageFetch::RetrieveAsyncReceived(const std::string& url) {
  std::array<Variant, 1> args{url};
  Variant result;
  std::string error;
  const long number = object_.Invoke("RetrieveAsyncReceived", args, result, error);
  if (number == kErrMemberNotFound) return std::nullopt;
  if (number != kInvokeOk) throw RoutineError(number, error);
  return As<std::int32_t>(result, "RetrieveAsyncReceived");
}

void PageFetch::RetrieveAsyncPage(const std::string& url, std::vector<std::uint8_t>& buffer) {
  std::array<Variant, 2> args{url, std::move(buffer)};
  Call("RetrieveAsyncPage", args);
  buffer = As<std::vector<std::uint8_t>>(args[1], "RetrieveAsyncPage");
}

void PageFetch::RetrieveAsyncFinish(const std::string& url) {
  std::array<Variant, 1> args{url};
  Call("RetrieveAsyncFinish", args);
}

void PageFetch::RetrieveAsyncWait(std::int32_t milliseconds) {
  std::array<Variant, 1> args{milliseconds};
  Call("RetrieveAsyncWait", args);
}

std::int32_t PageFetch::MapZone(const std::string& url) {
  return As<std::int32_t>(Call("MapZone", ReusedArguments({url})), "MapZone");
}

}  // namespace tarnwick

// Typed calls to the retrieval component (Tarnwick.PageFetch.1) over its
// late-bound object. A failed call throws RoutineError, which the calling
// routine's own error trap catches and logs, as a failed late-bound call
// would raise in its caller.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "support/ComponentObject.h"
#include "support/RoutineError.h"

namespace tarnwick {

class PageFetch {
 public:
  explicit PageFetch(ComponentObject& object) : object_(object) {}

  std::string RetrieveAsync(const std::string& url, const std::string& agent, const std::string& headers);
  std::string RetrieveAsyncPost(const std::string& url, const std::string& agent, const std::string& headers,
                                const std::string& postData);
  std::int32_t RetrieveAsyncCompleted(const std::string& url);
  std::string RetrieveAsyncHeaders(const std::string& url);
  std::int32_t RetrieveAsyncPageSize(const std::string& url);
  // Bytes of the answer received so far; nullopt from a component that does
  // not have this member (it is newer than the others).
  std::optional<std::int32_t> RetrieveAsyncReceived(const std::string& url);
  void RetrieveAsyncPage(const std::string& url, std::vector<std::uint8_t>& buffer);
  void RetrieveAsyncFinish(const std::string& url);
  void RetrieveAsyncWait(std::int32_t milliseconds);
  std::int32_t MapZone(const std::string& url);

 private:
  Variant Call(const char* member, std::span<Variant> args);

  ComponentObject& object_;
};

}  // namespace tarnwick

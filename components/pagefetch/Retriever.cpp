#include "Retriever.h"

#include <algorithm>

namespace tarnwick::pagefetch {

Retriever::Retriever(RetrieverLimits limits) : transport_(MakeTransport(limits)) {}

std::string Retriever::RetrieveAsync(const std::string& url, const std::string& agent, const std::string& headers) {
  return Start(url, agent, headers, nullptr);
}

std::string Retriever::RetrieveAsyncPost(const std::string& url, const std::string& agent, const std::string& headers,
                                         const std::string& postData) {
  return Start(url, agent, headers, &postData);
}

std::string Retriever::Start(const std::string& url, const std::string& agent, const std::string& headers,
                             const std::string* postData) {
  TransferRequest request{url, agent, {}, postData};
  std::string why;
  if (!ReadHeaderBlock(headers, request.headerLines, why)) return why;
  RetrieveAsyncFinish(url);
  auto transfer = transport_->Start(request, why);
  if (!transfer) return why;
  transfers_[url] = std::move(transfer);
  transport_->Pump();
  return "ok";
}

Transfer* Retriever::Find(const std::string& url) {
  const auto it = transfers_.find(url);
  return it == transfers_.end() ? nullptr : it->second.get();
}

std::int32_t Retriever::RetrieveAsyncCompleted(const std::string& url) {
  transport_->Pump();
  const Transfer* transfer = Find(url);
  return transfer == nullptr ? kStateError : transfer->state();
}

std::string Retriever::RetrieveAsyncHeaders(const std::string& url) {
  const Transfer* transfer = Find(url);
  return transfer == nullptr ? std::string() : transfer->headers();
}

std::int32_t Retriever::RetrieveAsyncPageSize(const std::string& url) {
  const Transfer* transfer = Find(url);
  return transfer == nullptr ? 0 : static_cast<std::int32_t>(transfer->page().size());
}

std::int32_t Retriever::RetrieveAsyncReceived(const std::string& url) {
  const Transfer* transfer = Find(url);
  if (transfer == nullptr) return 0;
  return static_cast<std::int32_t>(std::min<std::size_t>(transfer->received(), INT32_MAX));
}

void Retriever::RetrieveAsyncPage(const std::string& url, std::vector<std::uint8_t>& buffer) {
  const Transfer* transfer = Find(url);
  if (transfer == nullptr) return;
  const std::size_t count = std::min(buffer.size(), transfer->page().size());
  std::copy_n(transfer->page().begin(), count, buffer.begin());
}

void Retriever::RetrieveAsyncFinish(const std::string& url) { transfers_.erase(url); }

void Retriever::RetrieveAsyncWait(std::int32_t milliseconds) { transport_->Wait(milliseconds < 0 ? 0 : milliseconds); }

}  // namespace tarnwick::pagefetch

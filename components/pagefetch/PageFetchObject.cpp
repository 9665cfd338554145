#include "PageFetchObject.h"

namespace tarnwick::pagefetch {

PageFetchObject::PageFetchObject(ZoneMapper zones, RetrieverLimits limits)
    : Dispatcher({
          {"RetrieveAsync", 3, 3,
           [this](kit::Arguments& a) -> Variant { return retriever_.RetrieveAsync(a.Text(0), a.Text(1), a.Text(2)); }},
          {"RetrieveAsyncPost", 4, 4,
           [this](kit::Arguments& a) -> Variant {
             return retriever_.RetrieveAsyncPost(a.Text(0), a.Text(1), a.Text(2), a.Text(3));
           }},
          {"RetrieveAsyncCompleted", 1, 1,
           [this](kit::Arguments& a) -> Variant { return retriever_.RetrieveAsyncCompleted(a.Text(0)); }},
          {"RetrieveAsyncHeaders", 1, 1,
           [this](kit::Arguments& a) -> Variant { return retriever_.RetrieveAsyncHeaders(a.Text(0)); }},
          {"RetrieveAsyncPageSize", 1, 1,
           [this](kit::Arguments& a) -> Variant { return retriever_.RetrieveAsyncPageSize(a.Text(0)); }},
          {"RetrieveAsyncReceived", 1, 1,
           [this](kit::Arguments& a) -> Variant { return retriever_.RetrieveAsyncReceived(a.Text(0)); }},
          {"RetrieveAsyncPage", 2, 2,
           [this](kit::Arguments& a) -> Variant {
             retriever_.RetrieveAsyncPage(a.Text(0), a.Bytes(1));
             return {};
           }},
          {"RetrieveAsyncFinish", 1, 1,
           [this](kit::Arguments& a) -> Variant {
             retriever_.RetrieveAsyncFinish(a.Text(0));
             return {};
           }},
          {"RetrieveAsyncWait", 1, 1,
           [this](kit::Arguments& a) -> Variant {
             retriever_.RetrieveAsyncWait(a.Integer(0));
             return {};
           }},
          {"MapZone", 1, 1, [this](kit::Arguments& a) -> Variant { return zones_(a.TextView(0)); }},
      }),
      retriever_(limits),
      zones_(std::move(zones)) {}

}  // namespace tarnwick::pagefetch

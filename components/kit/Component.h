// The component kit: what a companion component library links to become a
// component the core can create by ProgID on every platform.
//
// The kit gives a library its entry points. On POSIX: the C ABI of
// support/ComponentAbi.h (TarnwickCreateObject, DllRegisterServer,
// DllUnregisterServer), registration under the current user's
// Software\Classes key of the settings store. On Windows: an in-process COM
// server (DllGetClassObject, DllCanUnloadNow, DllRegisterServer,
// DllUnregisterServer) whose objects the core calls late-bound through
// IDispatch, registered in HKEY_CLASSES_ROOT. The layout of a registration
// is in band/ClassRegistry.h. On both, the core creates an object with
// NewObject (band/ComponentFactory.h) and calls it through ComponentObject.
//
// A component declares itself in three steps.
//
// 1. Its object: a Dispatcher (Dispatch.h) with a member table. A member has
//    a name, the least and most arguments it takes, and a function that reads
//    them through Arguments and returns its answer (a Variant: empty, bool,
//    int32, text, text array or byte array). Text(i) (or TextView(i), without
//    a copy) and Integer(i) coerce an argument as Automation does; an absent
//    optional argument reads as "" or 0. Arguments pass by reference: a
//    member fills a byte array through Bytes(i), or replaces an argument with
//    Set(i, value), and the caller sees the change. A member raises
//    ComponentError for a failure of its own and ArgumentError for an
//    argument of the wrong kind; an unknown name is kErrMemberNotFound.
//
//      class PageFetchObject final : public kit::Dispatcher {
//       public:
//        explicit PageFetchObject(kit::ComponentContext& context)
//            : Dispatcher({
//                  {"RetrieveAsync", 3, 3, [this](kit::Arguments& a) -> Variant {
//                     return retriever_.RetrieveAsync(a.Text(0), a.Text(1), a.Text(2)); }},
//                  {"RetrieveAsyncPage", 2, 2, [this](kit::Arguments& a) -> Variant {
//                     retriever_.RetrieveAsyncPage(a.Text(0), a.Bytes(1));
//                     return {}; }},
//                  {"RetrieveAsyncCompleted", 1, 1, [this](kit::Arguments& a) -> Variant {
//                     return retriever_.RetrieveAsyncCompleted(a.Text(0)); }},  // std::int32_t
//              }) {}
//      };
//
// 2. Its class: exactly one source file of the library defines ExportedClass()
//    with the ProgID, a class id of its own (make one with uuidgen, upper
//    case, in braces), a description and the function that makes an object:
//
//      const kit::ComponentClass& kit::ExportedClass() {
//        static const ComponentClass pageFetch{
//            "Tarnwick.PageFetch.1", "{...}", "Tarnwick page retrieval",
//            [](ComponentContext& context) -> std::unique_ptr<Dispatcher> {
//              return std::make_unique<PageFetchObject>(context); }};
//        return pageFetch;
//      }
//
// 3. Its file: in its CMakeLists.txt,
//
//      tarnwick_add_component(pagefetch FILE pagefetch.dll
//                             SOURCES PageFetchClass.cpp LIBRARIES tw_pagefetch_engine)
//
//    builds the library file under that exact name in the program folder,
//    links the kit and exports only the entry points.
//
// Each object gets a ComponentContext: the settings store and a log of its
// own. That log is the program's blocked.log (through the platform's folders
// and clock); it writes debug lines when the Debug setting was on at the
// moment the object was created.
#pragma once

#include <memory>
#include <string_view>

#include "ComponentContext.h"
#include "Dispatch.h"

namespace tarnwick::kit {

struct ComponentClass {
  std::string_view progId;
  std::string_view clsid;  // "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}"
  std::string_view description;
  // A new object; `context` outlives it.
  std::unique_ptr<Dispatcher> (*create)(ComponentContext& context);
};

// Defined by each component library: the one class its entry points serve.
const ComponentClass& ExportedClass();

}  // namespace tarnwick::kit

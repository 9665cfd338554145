// A real library that is no component: it has a DllRegisterServer that
// fails, and neither the component entry point nor DllUnregisterServer.
#include <cstdint>

#ifdef _WIN32
#define TARNWICK_EXPORT extern "C" __declspec(dllexport)
#else
#define TARNWICK_EXPORT extern "C" __attribute__((visibility("default")))
#endif

TARNWICK_EXPORT std::int32_t DllRegisterServer() { return 1; }

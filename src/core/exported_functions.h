#pragma once
#include <exception>
#include <new>

#include "base/error_codes.h"
#include "orvelan.h"

// The ten exported functions of a component, each a guarded call into its
// component object. The standard library may throw bad_alloc or length_error
// (our code does not throw); nothing may cross the C boundary, so each entry
// point catches and reports 200 "Out of memory." instead.
namespace orvelan::exported {

template <class Component>
void* Create(EventCallback callback, void* user_data) noexcept {
  try {
    return new (std::nothrow) Component(callback, user_data);
  } catch (const std::exception&) {
    return nullptr;
  }
}

template <class Component>
int Destroy(void* obj) noexcept {
  delete static_cast<Component*>(obj);  // null is allowed
  return 0;
}

template <class Component>
int CheckIndex(void* obj, int id, int index) noexcept {
  if (obj == nullptr) return 0;
  try {
    return static_cast<Component*>(obj)->CheckIndex(id, index);
  } catch (const std::exception&) {
    return static_cast<Component*>(obj)->Finish(kErrOutOfMemory);
  }
}

template <class Component>
void* Get(void* obj, int id, int index, int* length) noexcept {
  if (obj == nullptr) return nullptr;
  try {
    return static_cast<Component*>(obj)->Get(id, index, length);
  } catch (const std::exception&) {
    static_cast<Component*>(obj)->Finish(kErrOutOfMemory);
    return nullptr;
  }
}

template <class Component>
int Set(void* obj, int id, int index, const void* value, int length) noexcept {
  if (obj == nullptr) return kErrUnknown;
  try {
    return static_cast<Component*>(obj)->Set(id, index, value, length);
  } catch (const std::exception&) {
    return static_cast<Component*>(obj)->Finish(kErrOutOfMemory);
  }
}

template <class Component>
const char* GetLastError(void* obj) noexcept {
  return obj == nullptr ? "" : static_cast<Component*>(obj)->GetLastError();
}

template <class Component>
int GetLastErrorCode(void* obj) noexcept {
  return obj == nullptr ? 0 : static_cast<Component*>(obj)->GetLastErrorCode();
}

template <class Component>
int Do(void* obj, int id, int count, void** params, int* lengths) noexcept {
  if (obj == nullptr) return kErrUnknown;
  try {
    return static_cast<Component*>(obj)->Do(id, count, params, lengths);
  } catch (const std::exception&) {
    return static_cast<Component*>(obj)->Finish(kErrOutOfMemory);
  }
}

}  // namespace orvelan::exported

// Defines the ten C entry points <Prefix>_Create ... <Prefix>_Do for a
// component class. A macro only because C symbol names cannot be templated;
// each function is a one-line call into the templates above.
#define ORVELAN_DEFINE_COMPONENT_EXPORTS(Prefix, Component)                                          \
  extern "C" {                                                                                       \
  ORVELAN_API int Prefix##_StaticInit(void*) { return 0; }                                           \
  ORVELAN_API int Prefix##_StaticDestroy(void) { return 0; }                                         \
  ORVELAN_API void* Prefix##_Create(EventCallback callback, void* user_data, char*) {                \
    return ::orvelan::exported::Create<Component>(callback, user_data);                             \
  }                                                                                                  \
  ORVELAN_API int Prefix##_Destroy(void* obj) { return ::orvelan::exported::Destroy<Component>(obj); } \
  ORVELAN_API int Prefix##_CheckIndex(void* obj, int id, int index) {                               \
    return ::orvelan::exported::CheckIndex<Component>(obj, id, index);                              \
  }                                                                                                  \
  ORVELAN_API void* Prefix##_Get(void* obj, int id, int index, int* length) {                       \
    return ::orvelan::exported::Get<Component>(obj, id, index, length);                             \
  }                                                                                                  \
  ORVELAN_API int Prefix##_Set(void* obj, int id, int index, const void* value, int length) {       \
    return ::orvelan::exported::Set<Component>(obj, id, index, value, length);                      \
  }                                                                                                  \
  ORVELAN_API const char* Prefix##_GetLastError(void* obj) {                                         \
    return ::orvelan::exported::GetLastError<Component>(obj);                                       \
  }                                                                                                  \
  ORVELAN_API int Prefix##_GetLastErrorCode(void* obj) {                                             \
    return ::orvelan::exported::GetLastErrorCode<Component>(obj);                                   \
  }                                                                                                  \
  ORVELAN_API int Prefix##_Do(void* obj, int id, int count, void** params, int* lengths) {          \
    return ::orvelan::exported::Do<Component>(obj, id, count, params, lengths);                     \
  }                                                                                                  \
  }

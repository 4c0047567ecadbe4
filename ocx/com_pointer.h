#pragma once

#include <windows.h>
// after windows.h
#include <objbase.h>

#include <utility>

namespace korvel::ocx {

/// A counted reference to an object of the system or of a container.
template <typename Interface>
class ComPointer {
 public:
  ComPointer() = default;
  ComPointer(const ComPointer& other) : ComPointer(shared(other.object_)) {}
  ComPointer(ComPointer&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  ComPointer& operator=(ComPointer other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~ComPointer() {
    if (object_ != nullptr) object_->Release();
  }

  /// Another reference to `object`, which may be null.
  [[nodiscard]] static ComPointer shared(Interface* object) {
    ComPointer pointer;
    pointer.object_ = object;
    if (object != nullptr) object->AddRef();
    return pointer;
  }
  /// Another interface of `object`, null where it has none.
  [[nodiscard]] static ComPointer of(IUnknown* object, REFIID identifier) {
    ComPointer pointer;
    if (object != nullptr) object->QueryInterface(identifier, reinterpret_cast<void**>(&pointer.object_));
    return pointer;
  }

  [[nodiscard]] Interface* get() const noexcept { return object_; }
  Interface* operator->() const noexcept { return object_; }
  explicit operator bool() const noexcept { return object_ != nullptr; }
  /// A place for a function that returns a counted reference.
  [[nodiscard]] Interface** receive() {
    *this = ComPointer();
    return &object_;
  }
  /// A counted reference for a caller.
  [[nodiscard]] Interface* handOver() noexcept { return std::exchange(object_, nullptr); }

 private:
  Interface* object_ = nullptr;
};

}  // namespace korvel::ocx

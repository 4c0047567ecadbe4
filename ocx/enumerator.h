#pragma once

#include <windows.h>
// after windows.h
#include <objbase.h>

#include <atomic>
#include <cstddef>
#include <new>
#include <utility>
#include <vector>

namespace korvel::ocx {

/// An enumeration of a list as it was when it was made. `copyOf(item)` makes what a caller gets; references in it are
/// the caller's.
template <typename Interface, const IID& identifier, typename Item, typename Copied>
class Enumerator final : public Interface {
 public:
  explicit Enumerator(std::vector<Item> items, std::size_t next = 0) : items_(std::move(items)), next_(next) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID wanted, void** object) noexcept override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (!IsEqualIID(wanted, IID_IUnknown) && !IsEqualIID(wanted, identifier)) return E_NOINTERFACE;
    *object = static_cast<Interface*>(this);
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() noexcept override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() noexcept override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

  HRESULT STDMETHODCALLTYPE Next(ULONG count, Copied* places, ULONG* fetched) noexcept override {
    if (places == nullptr || (fetched == nullptr && count != 1)) return E_POINTER;
    ULONG given = 0;
    for (; given < count && next_ < items_.size(); ++given) places[given] = copyOf(items_[next_++]);
    if (fetched != nullptr) *fetched = given;
    return given == count ? S_OK : S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE Skip(ULONG count) noexcept override {
    const std::size_t left = items_.size() - next_;
    next_ += count < left ? count : left;
    return count <= left ? S_OK : S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE Reset() noexcept override {
    next_ = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Clone(Interface** copy) noexcept override {
    if (copy == nullptr) return E_POINTER;
    try {
      *copy = new Enumerator(items_, next_);
      return S_OK;
    } catch (const std::bad_alloc&) {
      return E_OUTOFMEMORY;
    }
  }

 private:
  ~Enumerator() = default;

  std::atomic<ULONG> references_ = 1;
  std::vector<Item> items_;
  std::size_t next_;
};

}  // namespace korvel::ocx

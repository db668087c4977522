// The sinks of an Automation object.
#pragma once

#include "automation/sink_list.h"

#include <ocidl.h>
#include <ole2.h>
#include <olectl.h>

#include <atomic>

namespace zkr::automation {

// The one connection point of a raster object, for its events. It shares the object's references.
class ConnectionPoint final : public IConnectionPoint {
  public:
    explicit ConnectionPoint(IConnectionPointContainer& owner);
    ~ConnectionPoint();
    ConnectionPoint(const ConnectionPoint&) = delete;
    ConnectionPoint& operator=(const ConnectionPoint&) = delete;

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    STDMETHODIMP_(ULONG) AddRef() override;
    STDMETHODIMP_(ULONG) Release() override;
    STDMETHODIMP GetConnectionInterface(IID* iid) override;
    STDMETHODIMP GetConnectionPointContainer(IConnectionPointContainer** container) override;
    STDMETHODIMP Advise(IUnknown* sink, DWORD* cookie) override;
    STDMETHODIMP Unadvise(DWORD cookie) override;
    STDMETHODIMP EnumConnections(IEnumConnections** connections) override;

    // Calls a member of the sinks that are there now, with up to three numbers. The lock is held meanwhile; the same
    // thread may come in again. What a sink answers plays no part.
    void Fire(DISPID member, const int32_t* numbers, UINT count);
    // Whether there may be sinks, told without the lock.
    bool IsWatched() const { return watched_.load(std::memory_order_relaxed); }

  private:
    IConnectionPointContainer& owner_;
    CRITICAL_SECTION lock_;
    SinkList<IDispatch*> sinks_;
    std::atomic<bool> watched_{false};
};

// One connection point after the other, of which there is one.
HRESULT MakePointEnumerator(IConnectionPoint* point, IEnumConnectionPoints** enumerator);

} // namespace zkr::automation

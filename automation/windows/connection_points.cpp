#include "automation/windows/connection_points.h"
#include "automation/windows/interfaces.h"

#include "automation/windows/enumerator.h"

namespace zkr::automation {

namespace {

class Entered {
  public:
    explicit Entered(CRITICAL_SECTION& lock) : lock_(lock) { EnterCriticalSection(&lock_); }
    ~Entered() { LeaveCriticalSection(&lock_); }
    Entered(const Entered&) = delete;
    Entered& operator=(const Entered&) = delete;

  private:
    CRITICAL_SECTION& lock_;
};

} // namespace

ConnectionPoint::ConnectionPoint(IConnectionPointContainer& owner) : owner_(owner) {
    InitializeCriticalSection(&lock_);
}

ConnectionPoint::~ConnectionPoint() {
    sinks_.ForEach([](IDispatch* sink, uint32_t) { sink->Release(); });
    DeleteCriticalSection(&lock_);
}

HRESULT ConnectionPoint::QueryInterface(REFIID iid, void** object) {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (!IsEqualIID(iid, IID_IUnknown) && !IsEqualIID(iid, IID_IConnectionPoint)) return E_NOINTERFACE;
    *object = static_cast<IConnectionPoint*>(this);
    AddRef();
    return S_OK;
}

ULONG ConnectionPoint::AddRef() {
    return owner_.AddRef();
}

ULONG ConnectionPoint::Release() {
    return owner_.Release();
}

HRESULT ConnectionPoint::GetConnectionInterface(IID* iid) {
    if (iid == nullptr) return E_POINTER;
    *iid = DIID__ZIRCRasterEvents;
    return S_OK;
}

HRESULT ConnectionPoint::GetConnectionPointContainer(IConnectionPointContainer** container) {
    if (container == nullptr) return E_POINTER;
    *container = &owner_;
    owner_.AddRef();
    return S_OK;
}

HRESULT ConnectionPoint::Advise(IUnknown* sink, DWORD* cookie) {
    if (cookie != nullptr) *cookie = 0;
    if (sink == nullptr || cookie == nullptr) return E_POINTER;
    Pointer<IDispatch> dispatch;
    if (FAILED(sink->QueryInterface(DIID__ZIRCRasterEvents, dispatch.OutUntyped())) &&
        FAILED(sink->QueryInterface(IID_IDispatch, dispatch.OutUntyped())))
        return CONNECT_E_CANNOTCONNECT;
    const Entered entered(lock_);
    *cookie = sinks_.Add(dispatch.get());
    if (*cookie == 0) return E_OUTOFMEMORY;
    dispatch.HandOver();
    watched_ = true;
    return S_OK;
}

HRESULT ConnectionPoint::Unadvise(DWORD cookie) {
    Pointer<IDispatch> sink;
    const Entered entered(lock_);
    if (!sinks_.Remove(cookie, sink.Out())) return CONNECT_E_NOCONNECTION;
    watched_ = sinks_.Count() != 0;
    return S_OK;
}

HRESULT ConnectionPoint::EnumConnections(IEnumConnections** connections) {
    if (connections == nullptr) return E_POINTER;
    *connections = nullptr;
    Pointer<Enumerator<IEnumConnections, CONNECTDATA>> made(
        MakeObject<Enumerator<IEnumConnections, CONNECTDATA>>());
    if (!made) return E_OUTOFMEMORY;
    bool whole = true;
    const Entered entered(lock_);
    sinks_.ForEach([&](IDispatch* sink, uint32_t cookie) { whole = whole && made->Append({sink, cookie}); });
    if (!whole) return E_OUTOFMEMORY;
    *connections = made.HandOver();
    return S_OK;
}

void ConnectionPoint::Fire(DISPID member, const int32_t* numbers, UINT count) {
    const Entered entered(lock_);
    const auto tell = [=](IDispatch* sink) {
        VARIANTARG arguments[3];
        for (UINT index = 0; index < count; ++index) { // the last one comes first
            VariantInit(&arguments[count - 1 - index]);
            V_VT(&arguments[count - 1 - index]) = VT_I4;
            V_I4(&arguments[count - 1 - index]) = numbers[index];
        }
        DISPPARAMS parameters = {arguments, nullptr, count, 0};
        sink->Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, nullptr, nullptr,
                     nullptr);
        sink->Release();
    };
    // Who is here now is told, whoever comes and goes meanwhile.
    Values<IDispatch*> told;
    const bool copied = told.Resize(sinks_.Count());
    int32_t held = 0;
    sinks_.ForEach([&](IDispatch* sink, uint32_t) {
        sink->AddRef();
        if (copied) {
            told[held++] = sink;
        } else {
            tell(sink);
        }
    });
    for (int32_t index = 0; index < held; ++index)
        tell(told[index]);
}

HRESULT MakePointEnumerator(IConnectionPoint* point, IEnumConnectionPoints** enumerator) {
    using Points = Enumerator<IEnumConnectionPoints, IConnectionPoint*>;
    if (enumerator == nullptr) return E_POINTER;
    *enumerator = nullptr;
    Pointer<Points> made(MakeObject<Points>());
    if (!made || !made->Append(point)) return E_OUTOFMEMORY;
    *enumerator = made.HandOver();
    return S_OK;
}

} // namespace zkr::automation

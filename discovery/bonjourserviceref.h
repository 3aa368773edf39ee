#ifndef DISCOVERY_BONJOURSERVICEREF_H
#define DISCOVERY_BONJOURSERVICEREF_H
// The table of outstanding DNS-SD requests. Each slot holds one reference and watches its socket,
// so that the daemon's answers arrive as events of the Qt event loop.

#include <dns_sd.h>

#include <QObject>
#include <QSocketNotifier>

#include <memory>
#include <vector>

class BonjourClientImpl;

/// Hands a reference whose socket is readable to the client implementation.
class BonjourClientEventProcessor {
public:
    explicit BonjourClientEventProcessor(BonjourClientImpl* impl) : _impl(impl) {}
    /// Lets the implementation run the results waiting on `ref`.
    void ProcessEvent(DNSServiceRef ref);
    BonjourClientImpl* Impl() const { return _impl; }

private:
    BonjourClientImpl* _impl;
};

/// The state of one slot: its reference (null while the slot is free) and the notifier on the
/// reference's socket (null while nothing is watched).
class BonjourServiceRef_Private : public QObject, public BonjourClientEventProcessor {
    Q_OBJECT
public:
    explicit BonjourServiceRef_Private(BonjourClientImpl* impl) : BonjourClientEventProcessor(impl) {}

    DNSServiceRef ref = nullptr;
    std::unique_ptr<QSocketNotifier> notifier;

public slots:
    /// The socket has data: the daemon has answered.
    void OnHandleRead();
};

/// One slot of the table. A copy is a new, free slot for the same implementation: references
/// are never shared.
class BonjourServiceRef {
public:
    explicit BonjourServiceRef(BonjourClientImpl* impl);
    BonjourServiceRef(const BonjourServiceRef& other);
    BonjourServiceRef& operator=(const BonjourServiceRef&) = delete;
    /// Frees the slot.
    ~BonjourServiceRef();

    /// Where a DNS-SD call puts the reference it makes.
    DNSServiceRef* Ref() { return &_d->ref; }
    DNSServiceRef Get() const { return _d->ref; }
    /// Stops watching, deallocates the reference and leaves the slot free.
    void Free();
    /// Watches the reference's socket; false for a free slot.
    bool Select();

private:
    std::unique_ptr<BonjourServiceRef_Private> _d;
};

/// The fixed table of slots: exactly 100, and a spare that stands in for an index out of range
/// and is never used for a request.
class BonjourClientCallbackWindow {
public:
    static constexpr int kSlots = 100;

    explicit BonjourClientCallbackWindow(BonjourClientImpl* impl);

    /// The index of the first free slot, or -1 when all are in use.
    int GetFreeDNSServiceRef() const;
    /// Where a DNS-SD call puts the reference of slot `index`; the spare's for an index out of range.
    DNSServiceRef* GetDNSServiceRef(int index);
    /// Watches the socket of slot `index`; false when it holds no reference.
    bool SelectDNSServiceRef(int index);
    /// Frees slot `index`.
    void FreeDNSServiceRef(int index);
    /// Frees the slot that holds `ref`, if any.
    void FreeDNSServiceRef(DNSServiceRef ref);
    /// The slot that holds `ref`, or -1.
    int FindDNSServiceRefIndex(DNSServiceRef ref) const;

private:
    BonjourServiceRef& _Slot(int index);

    std::vector<BonjourServiceRef> _refs;
    BonjourServiceRef _spare;
};

#endif

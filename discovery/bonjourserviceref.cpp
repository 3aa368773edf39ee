#include "discovery/bonjourserviceref.h"

#include "discovery/bonjourclientimpl.h"

void BonjourClientEventProcessor::ProcessEvent(DNSServiceRef ref)
{
    _impl->Process(ref);
}

void BonjourServiceRef_Private::OnHandleRead()
{
    ProcessEvent(ref);
}

BonjourServiceRef::BonjourServiceRef(BonjourClientImpl* impl) : _d(std::make_unique<BonjourServiceRef_Private>(impl)) {}

BonjourServiceRef::BonjourServiceRef(const BonjourServiceRef& other)
    : BonjourServiceRef(other._d->Impl())
{
}

BonjourServiceRef::~BonjourServiceRef()
{
    Free();
}

void BonjourServiceRef::Free()
{
    // The notifier goes first: it must not watch a socket that the deallocation closes.
    _d->notifier.reset();
    if (_d->ref)
        DNSServiceRefDeallocate(_d->ref);
    _d->ref = nullptr;
}

bool BonjourServiceRef::Select()
{
    if (!_d->ref)
        return false;
    _d->notifier = std::make_unique<QSocketNotifier>(DNSServiceRefSockFD(_d->ref), QSocketNotifier::Read);
    QObject::connect(_d->notifier.get(), SIGNAL(activated(int)), _d.get(), SLOT(OnHandleRead()));
    return true;
}

BonjourClientCallbackWindow::BonjourClientCallbackWindow(BonjourClientImpl* impl)
    : _refs(kSlots, BonjourServiceRef(impl)), _spare(impl)
{
}

int BonjourClientCallbackWindow::GetFreeDNSServiceRef() const
{
    for (int i = 0; i < kSlots; ++i)
        if (!_refs[i].Get())
            return i;
    return -1;
}

DNSServiceRef* BonjourClientCallbackWindow::GetDNSServiceRef(int index)
{
    return _Slot(index).Ref();
}

bool BonjourClientCallbackWindow::SelectDNSServiceRef(int index)
{
    return _Slot(index).Select();
}

void BonjourClientCallbackWindow::FreeDNSServiceRef(int index)
{
    _Slot(index).Free();
}

void BonjourClientCallbackWindow::FreeDNSServiceRef(DNSServiceRef ref)
{
    const int index = FindDNSServiceRefIndex(ref);
    if (index >= 0)
        FreeDNSServiceRef(index);
}

int BonjourClientCallbackWindow::FindDNSServiceRefIndex(DNSServiceRef ref) const
{
    if (!ref)
        return -1;
    for (int i = 0; i < kSlots; ++i)
        if (_refs[i].Get() == ref)
            return i;
    return -1;
}

BonjourServiceRef& BonjourClientCallbackWindow::_Slot(int index)
{
    return index >= 0 && index < kSlots ? _refs[index] : _spare;
}

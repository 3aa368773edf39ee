#include "discovery/bonjourclient.h"

#include <QtGlobal>

#include "discovery/bonjourclientimpl.h"

BonjourClient::BonjourClient(BonjourClientListener* listener)
    : _listener(listener)
{
    // The platform's compatibility layer would otherwise greet the user with a banner on stderr.
    qputenv("AVAHI_COMPAT_NOWARN", "1");
    _impl = std::make_unique<BonjourClientImpl>(listener);
}

BonjourClient::~BonjourClient() = default;

void BonjourClient::Browse(const std::string& type)
{
    _impl->Browse(type);
}

void BonjourClient::Register(const std::string& name, const std::string& type, const std::string& domain, int port,
                             const std::map<std::string, std::string>& txt)
{
    _impl->Register(name, type, domain, port, txt);
}

void BonjourClient::Confirm(const std::string& host, const SocketAddress& address)
{
    _impl->Confirm(host, address);
}

void BonjourClient::Clear()
{
    _impl.reset();
    _impl = std::make_unique<BonjourClientImpl>(_listener);
}

void BonjourClient::Debug() {}

#include "discovery/bonjourclientimpl.h"

#include <arpa/inet.h>

#include <cstring>

namespace {

const char* const kOutOfResources = ": Out of resources";
constexpr std::uint16_t kTypeA = 1;
constexpr std::uint16_t kTypeAAAA = 28;
constexpr std::uint16_t kClassIN = 1;

// The words for the daemon's error codes. -65546 has none on purpose: like any code not listed,
// it leaves the message bare.
const std::map<DNSServiceErrorType, std::string>& ErrorWords()
{
    static const std::map<DNSServiceErrorType, std::string> words{
        {0, "Success"},
        {-65537, "Unknown Error"},
        {-65538, "No Such Name"},
        {-65539, "Out Of Memory"},
        {-65540, "Bad Parameter"},
        {-65541, "Bad Reference"},
        {-65542, "Bad State"},
        {-65543, "Bad Flags"},
        {-65544, "Unsupported"},
        {-65545, "Not Initialized"},
        {-65547, "Already Registered"},
        {-65548, "Name Conflict"},
        {-65549, "Invalid"},
        {-65550, "Firewall"},
        {-65551, "Incompatible"},
        {-65552, "Bad Interface Index"},
        {-65553, "Refused"},
        {-65554, "No Such Record"},
        {-65555, "No Authorization"},
        {-65556, "No Such Key"},
        {-65557, "NAT Traversal"},
        {-65558, "Double NAT"},
        {-65559, "Bad Time"},
    };
    return words;
}

std::string Text(const char* text)
{
    return text ? text : "";
}

// Each TXT entry is a length byte and that many bytes. "key=value" gives the key up to the first
// "=" and the rest as value; an entry without "=" gives nothing; a later key replaces an earlier
// one. An entry longer than what remains ends the walk.
std::map<std::string, std::string> ParseTxt(const unsigned char* data, std::uint16_t size)
{
    std::map<std::string, std::string> txt;
    std::uint16_t remaining = data ? size : 0;
    while (remaining > 0) {
        const std::uint16_t length = *data++;
        --remaining;
        if (length > remaining)
            break;
        const std::string entry(reinterpret_cast<const char*>(data), length);
        data += length;
        remaining = static_cast<std::uint16_t>(remaining - length);
        const auto equals = entry.find('=');
        if (equals != std::string::npos)
            txt[entry.substr(0, equals)] = entry.substr(equals + 1);
    }
    return txt;
}

// Pairs in key order as "key=value", each behind one length byte. The length is cut to 8 bits
// unchecked: a pair over 255 bytes makes a broken record.
std::string BuildTxt(const std::map<std::string, std::string>& txt)
{
    std::string record;
    for (const auto& [key, value] : txt) {
        const std::string entry = key + "=" + value;
        record += static_cast<char>(entry.size() & 0xff);
        record += entry;
    }
    return record;
}

}  // namespace

BonjourClientImpl::BonjourClientImpl(BonjourClientListener* listener) : _listener(listener), _window(this) {}

void BonjourClientImpl::Browse(const std::string& type)
{
    const std::string message = "Unable to browse for service: " + type;
    const int index = _window.GetFreeDNSServiceRef();
    if (index < 0)
        return _Error(message + kOutOfResources, true);
    _Context* context = _NewContext();
    const DNSServiceErrorType code =
        DNSServiceBrowse(_window.GetDNSServiceRef(index), 0, 0, type.c_str(), nullptr, &_BrowseReply, context);
    if (code != kDNSServiceErr_NoError) {
        _DeleteContext(context);
        return _Error(message, code, true);
    }
    context->slot = index;
    _window.SelectDNSServiceRef(index);
}

void BonjourClientImpl::Register(const std::string& name, const std::string& type, const std::string& domain,
                                 int port, const std::map<std::string, std::string>& txt)
{
    const std::string message = "Unable to register service: " + name;
    const int index = _window.GetFreeDNSServiceRef();
    if (index < 0)
        return _Error(message + kOutOfResources, true);
    _Context* context = _NewContext(name, type, domain);
    const std::string record = BuildTxt(txt);
    const DNSServiceErrorType code = DNSServiceRegister(
        _window.GetDNSServiceRef(index), 0, 0, name.c_str(), type.c_str(), domain.c_str(), nullptr,
        htons(static_cast<std::uint16_t>(port)), static_cast<std::uint16_t>(record.size()), record.data(),
        &_RegisterReply, context);
    if (code != kDNSServiceErr_NoError) {
        _DeleteContext(context);
        return _Error(message, code, true);
    }
    context->slot = index;
    _window.SelectDNSServiceRef(index);
}

void BonjourClientImpl::Confirm(const std::string& host, const SocketAddress& address)
{
    const bool v4 = address.Family() == Socket::IPv4;
    unsigned char data[16];
    inet_pton(v4 ? AF_INET : AF_INET6, address.Presentation().c_str(), data);
    const DNSServiceErrorType code = DNSServiceReconfirmRecord(0, 0, host.c_str(), v4 ? kTypeA : kTypeAAAA,
                                                               kClassIN, v4 ? 4 : 16, data);
    _Error("Unable to confirm: " + host, code, true);
}

void BonjourClientImpl::Process(DNSServiceRef ref)
{
    const DNSServiceErrorType code = DNSServiceProcessResult(ref);
    if (code != kDNSServiceErr_NoError) {
        _FreeSlot(ref);
        _Error("Unable to process result", code, false);
    }
}

void DNSSD_API BonjourClientImpl::_BrowseReply(DNSServiceRef, DNSServiceFlags flags, std::uint32_t interface_index,
                                               DNSServiceErrorType code, const char* name, const char* type,
                                               const char* domain, void* context)
{
    BonjourClientImpl* impl = static_cast<_Context*>(context)->impl;
    if (code != kDNSServiceErr_NoError)
        return impl->_Error("Error browsing", code, false);
    if (!(flags & kDNSServiceFlagsAdd)) {
        if (impl->_listener)
            impl->_listener->RemoveService(Text(name), Text(type), Text(domain));
        return;
    }
    impl->_Resolve(interface_index, Text(name), Text(type), Text(domain));
}

void BonjourClientImpl::_Resolve(std::uint32_t interface_index, const std::string& name, const std::string& type,
                                 const std::string& domain)
{
    const int index = _window.GetFreeDNSServiceRef();
    if (index < 0)
        return _Error("Error browsing" + std::string(kOutOfResources), false);
    _Context* context = _NewContext(name, type, domain);
    const DNSServiceErrorType code = DNSServiceResolve(_window.GetDNSServiceRef(index), 0, interface_index,
                                                       name.c_str(), type.c_str(), domain.c_str(), &_ResolveReply,
                                                       context);
    if (code != kDNSServiceErr_NoError)
        return _DeleteContext(context);
    context->slot = index;
    _window.SelectDNSServiceRef(index);
}

void DNSSD_API BonjourClientImpl::_ResolveReply(DNSServiceRef ref, DNSServiceFlags flags,
                                                std::uint32_t interface_index, DNSServiceErrorType code,
                                                const char*, const char* host, std::uint16_t port,
                                                std::uint16_t txt_size, const unsigned char* txt, void* context)
{
    BonjourClientImpl* impl = static_cast<_Context*>(context)->impl;
    if (code != kDNSServiceErr_NoError) {
        impl->_FreeSlot(ref);
        return impl->_Error("Error resolving", code, false);
    }
    _Context found = *static_cast<_Context*>(context);
    found.host = Text(host);
    found.port = ntohs(port);
    found.txt = ParseTxt(txt, txt_size);
    impl->_QueryAddress(interface_index, found, kTypeA);
    impl->_QueryAddress(interface_index, found, kTypeAAAA);
    if (!(flags & kDNSServiceFlagsMoreComing))
        impl->_FreeSlot(ref);
}

void BonjourClientImpl::_QueryAddress(std::uint32_t interface_index, const _Context& context, std::uint16_t rrtype)
{
    const int index = _window.GetFreeDNSServiceRef();
    if (index < 0)
        return;  // the slots come back as requests end; a later browse finds this address
    _Context* query = _CopyContext(context);
    const DNSServiceErrorType code = DNSServiceQueryRecord(_window.GetDNSServiceRef(index), 0, interface_index,
                                                           context.host.c_str(), rrtype, kClassIN, &_QueryReply, query);
    if (code != kDNSServiceErr_NoError) {
        _DeleteContext(query);
        return _Error("Error resolving", code, false);
    }
    query->slot = index;
    _window.SelectDNSServiceRef(index);
}

void DNSSD_API BonjourClientImpl::_QueryReply(DNSServiceRef ref, DNSServiceFlags flags, std::uint32_t interface_index,
                                              DNSServiceErrorType code, const char*, std::uint16_t rrtype,
                                              std::uint16_t, std::uint16_t size, const void* data, std::uint32_t,
                                              void* context)
{
    const _Context& query = *static_cast<_Context*>(context);
    BonjourClientImpl* impl = query.impl;
    if (code != kDNSServiceErr_NoError) {
        impl->_FreeSlot(ref);
        return impl->_Error("Error querying", code, false);
    }
    if (impl->_listener) {
        if (rrtype == kTypeA && size >= 4) {
            in_addr v4;
            std::memcpy(&v4, data, sizeof v4);
            SocketAddress address(v4);
            address.Port(query.port);
            impl->_listener->AddService(query.name, query.type, query.domain, interface_index, query.host, address,
                                        query.txt);
        } else if (interface_index != 0 && rrtype == kTypeAAAA && size >= 16) {
            // An IPv6 answer that names no interface cannot be dialled if it is link-local.
            in6_addr v6;
            std::memcpy(&v6, data, sizeof v6);
            SocketAddress address(v6);
            address.Port(query.port);
            if (address.IsLinkLocal())
                address.Scope(interface_index);
            impl->_listener->AddService(query.name, query.type, query.domain, interface_index, query.host, address,
                                        query.txt);
        }
    }
    // The first batch of answers ends the query.
    if (!(flags & kDNSServiceFlagsMoreComing))
        impl->_FreeSlot(ref);
}

void DNSSD_API BonjourClientImpl::_RegisterReply(DNSServiceRef ref, DNSServiceFlags, DNSServiceErrorType code,
                                                 const char* name, const char* type, const char* domain,
                                                 void* context)
{
    // The context stays with the slot: the daemon answers again when it has to re-announce.
    BonjourClientImpl* impl = static_cast<_Context*>(context)->impl;
    if (code != kDNSServiceErr_NoError) {
        impl->_FreeSlot(ref);
        return impl->_Error("Error registering", code, false);
    }
    if (impl->_listener)
        impl->_listener->ServiceRegistered(Text(name), Text(type), Text(domain));
}

BonjourClientImpl::_Context* BonjourClientImpl::_NewContext(const std::string& name, const std::string& type,
                                                            const std::string& domain)
{
    _Context& context = _contexts.emplace_back();
    context.impl = this;
    context.name = name;
    context.type = type;
    context.domain = domain;
    return &context;
}

BonjourClientImpl::_Context* BonjourClientImpl::_CopyContext(const _Context& context)
{
    return &_contexts.emplace_back(context);
}

void BonjourClientImpl::_DeleteContext(const _Context* context)
{
    _contexts.remove_if([context](const _Context& c) { return &c == context; });
}

void BonjourClientImpl::_FreeSlot(DNSServiceRef ref)
{
    const int index = _window.FindDNSServiceRefIndex(ref);
    if (index < 0)
        return;
    _window.FreeDNSServiceRef(index);
    _contexts.remove_if([index](const _Context& c) { return c.slot == index; });
}

void BonjourClientImpl::_Error(const std::string& message, DNSServiceErrorType code, bool may_throw)
{
    if (code == kDNSServiceErr_NoError)
        return;
    const auto word = ErrorWords().find(code);
    _Error(word == ErrorWords().end() ? message : message + ": " + word->second, may_throw);
}

void BonjourClientImpl::_Error(const std::string& message, bool may_throw)
{
    if (_listener && _listener->ServiceError(message) && may_throw)
        throw BonjourClient::Error(message);
}

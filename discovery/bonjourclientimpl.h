#ifndef DISCOVERY_BONJOURCLIENTIMPL_H
#define DISCOVERY_BONJOURCLIENTIMPL_H
// The working part of BonjourClient: the requests, the chain browse -> resolve -> address queries,
// and the reporting of failures.

#include <dns_sd.h>

#include <cstdint>
#include <list>
#include <map>
#include <string>

#include "discovery/bonjourclient.h"
#include "discovery/bonjourserviceref.h"

/// One client's requests. Destroying it ends them all.
class BonjourClientImpl {
public:
    /// What travels with each asynchronous call.
    struct _Context {
        BonjourClientImpl* impl = nullptr;
        std::string name;
        std::string type;
        std::string domain;
        std::string host;
        int port = 0;  // host order
        std::map<std::string, std::string> txt;
        int slot = -1;  // the slot of the request that carries it, once the request runs
    };

    explicit BonjourClientImpl(BonjourClientListener* listener);
    BonjourClientImpl(const BonjourClientImpl&) = delete;
    BonjourClientImpl& operator=(const BonjourClientImpl&) = delete;

    /// As BonjourClient::Browse, Register and Confirm.
    void Browse(const std::string& type);
    void Register(const std::string& name, const std::string& type, const std::string& domain, int port,
                  const std::map<std::string, std::string>& txt);
    void Confirm(const std::string& host, const SocketAddress& address);
    /// Runs the results waiting on `ref`; called when its socket is readable.
    void Process(DNSServiceRef ref);

private:
    static void DNSSD_API _BrowseReply(DNSServiceRef ref, DNSServiceFlags flags, std::uint32_t interface_index,
                                       DNSServiceErrorType code, const char* name, const char* type,
                                       const char* domain, void* context);
    static void DNSSD_API _ResolveReply(DNSServiceRef ref, DNSServiceFlags flags, std::uint32_t interface_index,
                                        DNSServiceErrorType code, const char* full_name, const char* host,
                                        std::uint16_t port, std::uint16_t txt_size, const unsigned char* txt,
                                        void* context);
    static void DNSSD_API _QueryReply(DNSServiceRef ref, DNSServiceFlags flags, std::uint32_t interface_index,
                                      DNSServiceErrorType code, const char* full_name, std::uint16_t rrtype,
                                      std::uint16_t rrclass, std::uint16_t size, const void* data, std::uint32_t ttl,
                                      void* context);
    static void DNSSD_API _RegisterReply(DNSServiceRef ref, DNSServiceFlags flags, DNSServiceErrorType code,
                                         const char* name, const char* type, const char* domain, void* context);

    void _Resolve(std::uint32_t interface_index, const std::string& name, const std::string& type,
                  const std::string& domain);
    void _QueryAddress(std::uint32_t interface_index, const _Context& context, std::uint16_t rrtype);

    /// A context owned by this implementation until deleted or until its slot is freed.
    _Context* _NewContext(const std::string& name = "", const std::string& type = "", const std::string& domain = "");
    _Context* _CopyContext(const _Context& context);
    void _DeleteContext(const _Context* context);
    /// Frees the slot that holds `ref` and the context of its request.
    void _FreeSlot(DNSServiceRef ref);

    /// Reports `message` with ": " and the word for `code`, if there is one; nothing for success.
    void _Error(const std::string& message, DNSServiceErrorType code, bool may_throw);
    /// Tells the listener; throws BonjourClient::Error if it asks for that and `may_throw` is set.
    void _Error(const std::string& message, bool may_throw);

    BonjourClientListener* _listener;
    std::list<_Context> _contexts;
    // Last, so that its slots end their requests before anything else goes.
    BonjourClientCallbackWindow _window;
};

#endif

#include "tests/discovery/dnssd_double.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <functional>
#include <map>

struct _DNSServiceRef_t {
    // One answer waiting: a failure of DNSServiceProcessResult itself, or a call of the callback.
    struct Answer {
        DNSServiceErrorType process_error = kDNSServiceErr_NoError;
        std::function<void(DNSServiceRef)> deliver;
    };
    std::string function;
    std::string type;  // of a browse
    DNSServiceBrowseReply browse_reply = nullptr;
    void* context = nullptr;
    int read_fd = -1;
    int write_fd = -1;
    std::deque<Answer> answers;
};

namespace {

struct World {
    std::vector<FakeService> services;
    std::vector<FakeRecord> records;
    std::vector<DnsSdCall> calls;
    std::map<std::string, DNSServiceErrorType> failures;
    std::vector<DNSServiceRef> refs;  // live, oldest first
};

World& world()
{
    static World w;
    return w;
}

std::string Text(const char* text)
{
    return text ? text : "(null)";
}

// False, and a failure of the test, for a reference that is not live.
bool IsLive(DNSServiceRef ref, const char* function)
{
    const auto& refs = world().refs;
    if (std::find(refs.begin(), refs.end(), ref) != refs.end())
        return true;
    ADD_FAILURE() << function << " on a reference that is not live";
    return false;
}

// The failure asked for the next call of `function`, once; none is 0.
DNSServiceErrorType TakeFailure(const std::string& function)
{
    const DNSServiceErrorType code = world().failures[function];
    world().failures.erase(function);
    return code;
}

// Writes the call down and, unless a failure was asked for, makes the reference that answers it.
DNSServiceErrorType Start(const DnsSdCall& call, DNSServiceRef* sdRef, void* context)
{
    world().calls.push_back(call);
    if (const DNSServiceErrorType code = TakeFailure(call.function))
        return code;
    int fds[2];
    if (pipe2(fds, O_CLOEXEC) != 0) {
        ADD_FAILURE() << "pipe2 failed";
        return kDNSServiceErr_Unknown;
    }
    *sdRef = new _DNSServiceRef_t{call.function, call.type, nullptr, context, fds[0], fds[1], {}};
    world().refs.push_back(*sdRef);
    return kDNSServiceErr_NoError;
}

void Queue(DNSServiceRef ref, _DNSServiceRef_t::Answer answer)
{
    ref->answers.push_back(std::move(answer));
    const char byte = 0;
    EXPECT_EQ(write(ref->write_fd, &byte, 1), 1);
}

// A batch of answers: all but the last say that more are coming.
DNSServiceFlags BatchFlags(std::size_t i, std::size_t count, DNSServiceFlags flags)
{
    return i + 1 < count ? flags | kDNSServiceFlagsMoreComing : flags;
}

// Tells the live browses for `type`, or only `only`, of a service that came or went, or of an error.
void TellBrowses(const std::string& type, DNSServiceFlags flags, std::uint32_t interface_index,
                 DNSServiceErrorType code, const std::string& name, const std::string& domain,
                 DNSServiceRef only = nullptr)
{
    for (DNSServiceRef ref : world().refs) {
        if (ref->function != "Browse" || ref->type != type || (only && ref != only))
            continue;
        const DNSServiceBrowseReply reply = ref->browse_reply;
        void* context = ref->context;
        const std::string answer_type = code ? "" : type;
        Queue(ref, {kDNSServiceErr_NoError, [=](DNSServiceRef r) {
                        reply(r, flags, interface_index, code, name.c_str(), answer_type.c_str(), domain.c_str(),
                              context);
                    }});
    }
}

}  // namespace

FakeRecord FakeRecord::Address(const std::string& host, std::uint32_t interface_index, const std::string& text)
{
    const bool v6 = text.find(':') != std::string::npos;
    unsigned char data[16];
    EXPECT_EQ(inet_pton(v6 ? AF_INET6 : AF_INET, text.c_str(), data), 1) << text;
    return {host, interface_index, std::uint16_t(v6 ? 28 : 1), std::string(reinterpret_cast<char*>(data), v6 ? 16 : 4)};
}

void DnsSdDouble::Reset()
{
    world() = World{{}, {}, {}, {}, world().refs};
}

void DnsSdDouble::Announce(const FakeService& service)
{
    world().services.push_back(service);
    TellBrowses(service.type, kDNSServiceFlagsAdd, service.interface_index, 0, service.name, service.domain);
}

void DnsSdDouble::Withdraw(const std::string& name)
{
    auto& services = world().services;
    const auto found =
        std::find_if(services.begin(), services.end(), [&](const FakeService& s) { return s.name == name; });
    ASSERT_NE(found, services.end()) << name;
    const FakeService service = *found;
    services.erase(found);
    TellBrowses(service.type, 0, service.interface_index, 0, service.name, service.domain);
}

void DnsSdDouble::AddRecord(const FakeRecord& record)
{
    world().records.push_back(record);
}

void DnsSdDouble::FailNext(const std::string& function, DNSServiceErrorType code)
{
    world().failures[function] = code;
}

void DnsSdDouble::BrowseError(const std::string& type, DNSServiceErrorType code)
{
    TellBrowses(type, 0, 0, code, "", "");
}

void DnsSdDouble::FailProcessing(DNSServiceRef ref, DNSServiceErrorType code)
{
    Queue(ref, {code, nullptr});
}

std::vector<DNSServiceRef> DnsSdDouble::LiveRefs(const std::string& function)
{
    std::vector<DNSServiceRef> refs;
    for (DNSServiceRef ref : world().refs)
        if (function.empty() || ref->function == function)
            refs.push_back(ref);
    return refs;
}

std::size_t DnsSdDouble::PendingAnswers()
{
    std::size_t count = 0;
    for (DNSServiceRef ref : world().refs)
        count += ref->answers.size();
    return count;
}

const std::vector<DnsSdCall>& DnsSdDouble::Calls()
{
    return world().calls;
}

std::vector<DnsSdCall> DnsSdDouble::Calls(const std::string& function)
{
    std::vector<DnsSdCall> calls;
    for (const DnsSdCall& call : world().calls)
        if (call.function == function)
            calls.push_back(call);
    return calls;
}

// The eight functions, with the platform's signatures.

DNSServiceErrorType DNSSD_API DNSServiceBrowse(DNSServiceRef* sdRef, DNSServiceFlags flags, uint32_t interfaceIndex,
                                               const char* regtype, const char* domain, DNSServiceBrowseReply callBack,
                                               void* context)
{
    const DnsSdCall call{"Browse", flags, interfaceIndex, "", Text(regtype), Text(domain), "", 0, 0, 0, ""};
    if (const DNSServiceErrorType code = Start(call, sdRef, context))
        return code;
    (*sdRef)->browse_reply = callBack;
    std::vector<FakeService> found;
    for (const FakeService& service : world().services)
        if (service.type == regtype)
            found.push_back(service);
    for (std::size_t i = 0; i < found.size(); ++i)
        TellBrowses(regtype, BatchFlags(i, found.size(), kDNSServiceFlagsAdd), found[i].interface_index, 0,
                    found[i].name, found[i].domain, *sdRef);
    return kDNSServiceErr_NoError;
}

DNSServiceErrorType DNSSD_API DNSServiceResolve(DNSServiceRef* sdRef, DNSServiceFlags flags, uint32_t interfaceIndex,
                                                const char* name, const char* regtype, const char* domain,
                                                DNSServiceResolveReply callBack, void* context)
{
    const DnsSdCall call{"Resolve", flags, interfaceIndex, Text(name), Text(regtype), Text(domain), "", 0, 0, 0, ""};
    if (const DNSServiceErrorType code = Start(call, sdRef, context))
        return code;
    for (const FakeService& s : world().services) {
        if (s.name != call.name || s.type != call.type || s.domain != call.domain)
            continue;
        Queue(*sdRef, {kDNSServiceErr_NoError, [s, callBack, context](DNSServiceRef r) {
                           const std::string full_name = s.name + "." + s.type + "." + s.domain;
                           callBack(r, 0, s.interface_index, s.resolve_error, full_name.c_str(), s.host.c_str(),
                                    htons(s.port), std::uint16_t(s.txt.size()),
                                    reinterpret_cast<const unsigned char*>(s.txt.data()), context);
                       }});
        break;
    }
    return kDNSServiceErr_NoError;
}

DNSServiceErrorType DNSSD_API DNSServiceQueryRecord(DNSServiceRef* sdRef, DNSServiceFlags flags,
                                                    uint32_t interfaceIndex, const char* fullname, uint16_t rrtype,
                                                    uint16_t rrclass, DNSServiceQueryRecordReply callBack,
                                                    void* context)
{
    const DnsSdCall call{"QueryRecord", flags, interfaceIndex, Text(fullname), "", "", "", 0, rrtype, rrclass, ""};
    if (const DNSServiceErrorType code = Start(call, sdRef, context))
        return code;
    std::vector<FakeRecord> found;
    for (const FakeRecord& record : world().records)
        if (record.host == call.name && record.rrtype == rrtype)
            found.push_back(record);
    for (std::size_t i = 0; i < found.size(); ++i) {
        const DNSServiceFlags answer_flags = BatchFlags(i, found.size(), kDNSServiceFlagsAdd);
        const FakeRecord r = found[i];
        Queue(*sdRef, {kDNSServiceErr_NoError, [=](DNSServiceRef q) {
                           callBack(q, answer_flags, r.interface_index, r.error, r.host.c_str(), r.rrtype, rrclass,
                                    std::uint16_t(r.rdata.size()), r.rdata.data(), 120, context);
                       }});
    }
    return kDNSServiceErr_NoError;
}

DNSServiceErrorType DNSSD_API DNSServiceRegister(DNSServiceRef* sdRef, DNSServiceFlags flags, uint32_t interfaceIndex,
                                                 const char* name, const char* regtype, const char* domain,
                                                 const char* host, uint16_t port, uint16_t txtLen,
                                                 const void* txtRecord, DNSServiceRegisterReply callBack,
                                                 void* context)
{
    const DnsSdCall call{"Register", flags, interfaceIndex, Text(name), Text(regtype), Text(domain), Text(host),
                         port, 0, 0, std::string(static_cast<const char*>(txtRecord), txtLen)};
    if (const DNSServiceErrorType code = Start(call, sdRef, context))
        return code;
    const std::string registered_domain = domain && *domain ? domain : "local.";
    const DNSServiceErrorType answer_code = TakeFailure("RegisterReply");
    Queue(*sdRef, {kDNSServiceErr_NoError, [call, registered_domain, answer_code, callBack, context](DNSServiceRef r) {
                       callBack(r, kDNSServiceFlagsAdd, answer_code, call.name.c_str(), call.type.c_str(),
                                registered_domain.c_str(), context);
                   }});
    return kDNSServiceErr_NoError;
}

DNSServiceErrorType DNSSD_API DNSServiceReconfirmRecord(DNSServiceFlags flags, uint32_t interfaceIndex,
                                                        const char* fullname, uint16_t rrtype, uint16_t rrclass,
                                                        uint16_t rdlen, const void* rdata)
{
    world().calls.push_back({"ReconfirmRecord", flags, interfaceIndex, Text(fullname), "", "", "", 0, rrtype, rrclass,
                             std::string(static_cast<const char*>(rdata), rdlen)});
    return TakeFailure("ReconfirmRecord");
}

int DNSSD_API DNSServiceRefSockFD(DNSServiceRef sdRef)
{
    return IsLive(sdRef, "DNSServiceRefSockFD") ? sdRef->read_fd : -1;
}

DNSServiceErrorType DNSSD_API DNSServiceProcessResult(DNSServiceRef sdRef)
{
    if (!IsLive(sdRef, "DNSServiceProcessResult"))
        return kDNSServiceErr_BadReference;
    char byte;
    if (read(sdRef->read_fd, &byte, 1) != 1 || sdRef->answers.empty()) {
        ADD_FAILURE() << "DNSServiceProcessResult without an answer waiting";
        return kDNSServiceErr_Unknown;
    }
    const auto answer = std::move(sdRef->answers.front());
    sdRef->answers.pop_front();
    if (answer.process_error != kDNSServiceErr_NoError)
        return answer.process_error;
    // The callback may deallocate the reference: nothing touches it afterwards.
    answer.deliver(sdRef);
    return kDNSServiceErr_NoError;
}

void DNSSD_API DNSServiceRefDeallocate(DNSServiceRef sdRef)
{
    if (!IsLive(sdRef, "DNSServiceRefDeallocate"))
        return;
    auto& refs = world().refs;
    refs.erase(std::find(refs.begin(), refs.end(), sdRef));
    close(sdRef->read_fd);
    close(sdRef->write_fd);
    delete sdRef;
}

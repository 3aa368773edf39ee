#pragma once
// A test double of the platform's DNS-SD library: the eight functions the client calls, with the
// same C signatures, answering from a scripted set of services and address records. Test binaries
// link it in place of the platform library (see discovery/CMakeLists.txt).
//
// Every reference owns a real pipe. An answer is queued on its reference and one byte is written
// to the pipe, so the client learns of it the way it does from a daemon: its socket notifier fires
// in the event loop, and DNSServiceProcessResult takes one byte and delivers one answer.

#include <dns_sd.h>

#include <cstdint>
#include <string>
#include <vector>

/// A service as the fake daemon knows it.
struct FakeService {
    std::string name;
    std::string type;
    std::string domain = "local.";
    std::uint32_t interface_index = 2;
    std::string host;
    std::uint16_t port = 0;  // host order
    std::string txt;         // the raw TXT record
    DNSServiceErrorType resolve_error = 0;  // the resolve answer carries this code
};

/// An address record as the fake daemon knows it; any query for its host and type gets it.
struct FakeRecord {
    std::string host;
    std::uint32_t interface_index = 2;
    std::uint16_t rrtype = 1;
    std::string rdata;
    DNSServiceErrorType error = 0;  // the answer carries this code

    /// A or AAAA record from the text of an address.
    static FakeRecord Address(const std::string& host, std::uint32_t interface_index, const std::string& text);
};

/// One call of a DNS-SD function as the double saw it. Unused fields stay empty or 0.
struct DnsSdCall {
    std::string function;  // "Browse", "Resolve", "QueryRecord", "Register", "ReconfirmRecord"
    DNSServiceFlags flags = 0;
    std::uint32_t interface_index = 0;
    std::string name;  // service name, or the host name of a query or reconfirmation
    std::string type;
    std::string domain;  // "(null)" for a null pointer
    std::string host;    // "(null)" for a null pointer
    std::uint16_t port = 0;  // as passed, network order
    std::uint16_t rrtype = 0;
    std::uint16_t rrclass = 0;
    std::string data;  // TXT record or record data
};

/// The fake daemon. There is one, shared by all references.
class DnsSdDouble {
public:
    /// Forgets services, records, calls and scripted failures. Live references stay.
    static void Reset();

    /// A service appears; live browses for its type hear of it.
    static void Announce(const FakeService& service);
    /// The service goes away; live browses for its type hear of it.
    static void Withdraw(const std::string& name);
    static void AddRecord(const FakeRecord& record);

    /// The next call of `function` (a name as in DnsSdCall) fails at once with `code`;
    /// "RegisterReply" makes the answer to the next registration carry `code` instead.
    static void FailNext(const std::string& function, DNSServiceErrorType code);
    /// Live browses for `type` get an answer carrying `code`.
    static void BrowseError(const std::string& type, DNSServiceErrorType code);
    /// The next DNSServiceProcessResult on `ref` fails with `code`.
    static void FailProcessing(DNSServiceRef ref, DNSServiceErrorType code);

    /// The live references made by `function`, oldest first; all of them for an empty name.
    static std::vector<DNSServiceRef> LiveRefs(const std::string& function = "");
    /// Answers queued on live references and not yet taken by DNSServiceProcessResult.
    static std::size_t PendingAnswers();
    static const std::vector<DnsSdCall>& Calls();
    /// The calls of one function.
    static std::vector<DnsSdCall> Calls(const std::string& function);
};

#include "drivers/lan/address.h"

#include <memory>

#include <netdb.h>
#include <sys/socket.h>

namespace Frudata_Driver {

namespace {

/// A question to the resolver, which may hold on to it for longer than anybody waits.
struct LOOKUP {
    explicit LOOKUP(const std::string& host) : name(host) {
        hints.ai_socktype = SOCK_DGRAM;
        request.ar_name = name.c_str();
        request.ar_request = &hints;
    }
    LOOKUP(const LOOKUP&) = delete;
    LOOKUP& operator=(const LOOKUP&) = delete;
    ~LOOKUP() {
        if (request.ar_result)
            freeaddrinfo(request.ar_result);
    }

    std::string name;
    addrinfo hints{};
    gaicb request{};
};

std::string Numeric(const addrinfo* addresses) {
    const addrinfo* chosen = addresses;
    for (const addrinfo* address = addresses; address; address = address->ai_next)
        if (address->ai_family == AF_INET) {
            chosen = address;
            break;
        }
    char text[NI_MAXHOST];
    if (!chosen || getnameinfo(chosen->ai_addr, chosen->ai_addrlen, text, sizeof text, nullptr, 0, NI_NUMERICHOST) != 0)
        return {};
    return text;
}

} // namespace

std::string WithPort(const std::string& host, UINT16 port) {
    const bool bare = host.find(':') == std::string::npos;
    return (bare ? host : "[" + host + "]") + ":" + std::to_string(port);
}

std::string Resolve(const std::string& host, std::chrono::milliseconds limit, std::string& message) {
    auto lookup = std::make_unique<LOOKUP>(host);
    gaicb* requests[] = {&lookup->request};
    int result = getaddrinfo_a(GAI_NOWAIT, requests, 1, nullptr);
    if (result == 0) {
        const timespec wait{.tv_sec = static_cast<time_t>(limit.count() / 1000),
                            .tv_nsec = static_cast<long>(limit.count() % 1000 * 1'000'000)};
        while ((result = gai_suspend(requests, 1, &wait)) == EAI_INTR)
            continue;
        result = gai_error(requests[0]);
    }
    if (result == EAI_INPROGRESS) {
        if (gai_cancel(requests[0]) != EAI_CANCELED)
            lookup.release(); // the resolver writes into it, whenever it comes to an end
        message = "no answer from the name service";
        return {};
    }
    const std::string numeric = result == 0 ? Numeric(lookup->request.ar_result) : "";
    if (numeric.empty())
        message = result ? gai_strerror(result) : "no address";
    return numeric;
}

} // namespace Frudata_Driver

#include "drivers/lan/address.h"

#include "drivers/lan/worker.h"

#include <memory>

#include <netdb.h>
#include <sys/socket.h>

namespace Frudata_Driver {

namespace {

/// A question to the name service, which may outlive the wait for it.
struct LOOKUP {
    std::string address{};
    std::string message{"out of memory"};
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

void Look(const std::string& host, LOOKUP& lookup) {
    addrinfo hints{};
    hints.ai_socktype = SOCK_DGRAM;
    addrinfo* addresses = nullptr;
    const int result = getaddrinfo(host.c_str(), nullptr, &hints, &addresses);
    const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> owner(addresses, freeaddrinfo);
    lookup.message = result ? gai_strerror(result) : "no address";
    lookup.address = Numeric(addresses);
}

} // namespace

std::string Resolve(const std::string& host, std::chrono::milliseconds limit, std::string& message) {
    const auto lookup = std::make_shared<LOOKUP>();
    CWorker worker(limit, [] {});
    if (!worker.Run([host, lookup] { WithoutThrowing([&] { Look(host, *lookup); }); }, limit)) {
        message = "no answer from the name service";
        return {};
    }
    message = lookup->message;
    return lookup->address;
}

} // namespace Frudata_Driver

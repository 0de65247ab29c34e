// The network address of a host.
#pragma once

#include <chrono>
#include <string>

namespace Frudata_Driver {

/**
 * The numeric address of `host`, a name or an address; its IPv4 address if it has one, since few BMCs listen on IPv6.
 * @param message the fault of a name without an address @return empty for a name without an address, or without one
 * within `limit`
 * @throw std::system_error when no thread can be started
 */
std::string Resolve(const std::string& host, std::chrono::milliseconds limit, std::string& message);

} // namespace Frudata_Driver

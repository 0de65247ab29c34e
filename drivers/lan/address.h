// Where a host is on the network.
#pragma once

#include "frudata/types.h"

#include <chrono>
#include <string>

namespace Frudata_Driver {

/// `host` with `port`, an IPv6 address in brackets: as a host is named to people, and an address to libfreeipmi.
std::string WithPort(const std::string& host, UINT16 port);

/**
 * The numeric address of `host`, a name or an address, of IPv4 where it has one: few BMCs listen on IPv6.
 * @param message what is wrong with the name, where nothing is returned @return empty where it has none, or none within
 * `limit`
 * @throw std::system_error where there is no thread to be had
 */
std::string Resolve(const std::string& host, std::chrono::milliseconds limit, std::string& message);

} // namespace Frudata_Driver

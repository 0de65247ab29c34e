// The one failure of the tool: what, why, a hint, and the exit status.
#pragma once

#include <exception>
#include <string>
#include <utility>

namespace Fructl {

/// Exit statuses of the tool: scripts depend on them.
enum EXIT_STATUS {
    EXIT_DONE = 0,
    EXIT_USAGE = 1,      ///< wrong command line
    EXIT_REFUSED = 2,    ///< a value or a file was refused; nothing was changed
    EXIT_DEVICE = 3,     ///< a device or the BMC failed
    EXIT_DAMAGED = 4,    ///< the FRU's contents are damaged
    EXIT_UNVERIFIED = 5, ///< what was read back is not what was written
    EXIT_PARTIAL = 6     ///< some FRUs of a scan could not be read
};

/// Printed as "fructl: what: why" and, on a line of its own, the hint.
class CToolError : public std::exception {
  public:
    CToolError(EXIT_STATUS status, std::string what, std::string why, std::string hint = {})
        : m_status(status), m_what(std::move(what)), m_why(std::move(why)), m_hint(std::move(hint)) {}

    const char* what() const noexcept override { return m_why.c_str(); }

    EXIT_STATUS m_status;
    std::string m_what;
    std::string m_why;
    std::string m_hint;
};

} // namespace Fructl

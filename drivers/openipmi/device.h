// The kernel's IPMI device: opening it, and moving messages through it with linux/ipmi.h.
#pragma once

#include "frudata/types.h"

#include <cstdint>
#include <span>

#include <sys/types.h>

namespace Frudata_OpenIpmi {

/// A point in time on the monotonic clock.
class CDeadline {
  public:
    explicit CDeadline(int milliseconds);
    /// @return milliseconds until then, 0 once it has passed
    int Remaining() const;

  private:
    std::int64_t m_end;
};

/// Who answers: the BMC, or a controller on one of its IPMB channels.
struct DESTINATION {
    bool isOnIpmb = false;
    UINT8 channel = 0; ///< IPMB only
    UINT8 address = 0; ///< IPMB only: slave address
    UINT8 lun = 0;
};

struct REQUEST {
    UINT8 netFn = 0;
    UINT8 cmd = 0;
    std::span<const UINT8> data;
    /// Milliseconds after which the kernel stops waiting for a controller on the IPMB.
    int patience = 0;
};

/// An answer of the kernel: the completion code, then the data.
struct ANSWER {
    long id = 0;            ///< of its request; 0 belongs to none
    bool isCut = false;     ///< it was longer than `bytes`
    UINT16 length = 0;      ///< of `bytes`
    UINT8 bytes[1024] = {}; // the kernel's own limit is 272
};

enum class TRANSFER {
    DONE,
    NOTHING, ///< no answer in time
    REFUSED, ///< the kernel does not accept this request
    FAILED   ///< the device is unusable
};

class CDevice {
  public:
    CDevice() = default;
    CDevice(const CDevice&) = delete;
    CDevice& operator=(const CDevice&) = delete;
    ~CDevice() { Close(); }

    /// Opens the first of the kernel's paths that exists. @return false where that fails, with the reason in Failure
    bool Open();
    void Close();
    /// @return null while it is not open
    const char* Path() const { return m_path; }
    /// False in a process that was forked after the device was opened.
    bool IsOwn() const;

    /// Hands the request over. @param id takes the number under which its answer returns
    TRANSFER Send(const DESTINATION& destination, const REQUEST& request, long& id);
    /// Waits for the next answer, to whatever request.
    TRANSFER Receive(ANSWER& answer, const CDeadline& deadline);

    [[gnu::format(printf, 2, 3)]] void SetFailure(const char* format, ...);
    /// The reason of the last failure, in one line; empty before the first.
    const char* Failure() const { return m_failure; }

  private:
    void ExplainRefusal(const char* path);
    TRANSFER Take(ANSWER& answer);
    TRANSFER Fail(int error);

    int m_descriptor = -1;
    const char* m_path = nullptr;
    pid_t m_owner = 0;
    int m_lastId = 0;
    char m_failure[256] = {};
};

} // namespace Frudata_OpenIpmi

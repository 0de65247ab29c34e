// One FRU device, byte by byte: the way of backups, of the check before a load, and of repair. For child
// processes only.
#pragma once

#include "tools/fructl/child.h"
#include "tools/fructl/library.h"

#include "frudata/bmclib.h"

#include <memory>
#include <optional>

namespace Fructl {

/// For ReadContents: all that the device has.
inline constexpr std::size_t WHOLE = ~std::size_t{0};

class CDevice {
  public:
    /// The library must have been started. `name` is for messages.
    CDevice(const ADDRESS& address, std::string name);

    /// Bytes of the whole device; nothing where it does not tell.
    std::optional<std::size_t> Size();
    /// What the header and the areas cover, and at least `atLeast` bytes, WHOLE being all of the device.
    BYTES ReadContents(std::size_t atLeast, const PROGRESS& progress = {});
    /// Writes `bytes` from the start of the device on, except where `known` has the same.
    void Write(BYTE_VIEW bytes, BYTE_VIEW known, const PROGRESS& progress = {});

  private:
    struct REQUEST {
        UINT8 netFn;
        UINT8 cmd;
        BYTES data;
    };

    /// Sends a request until the device is no longer busy. @return the completion code; `answer` its data
    UINT8 Send(const REQUEST& request, BYTES& answer);
    bool IsFruDevice() const;
    bool IsBridged() const;
    REQUEST ReadRequest(std::size_t offset, std::size_t count) const;
    REQUEST WriteRequest(std::size_t offset, BYTE_VIEW data) const;
    /// One read or write of at most `count` bytes. @return how many it moved
    std::size_t ReadSome(std::size_t offset, std::size_t count, BYTES& bytes);
    std::size_t WriteSome(std::size_t offset, BYTE_VIEW data);
    /// Extends `image` to `end`, as far as the device goes.
    void ReadTo(std::size_t end, BYTES& image, const PROGRESS& progress);
    void Fail(const std::string& why) const;

    ADDRESS m_address;
    std::string m_name;
    std::size_t m_chunk;     ///< bytes of a write
    std::size_t m_readChunk; ///< as far as the way goes, halved where that is too much; bridged as a write
    std::optional<std::size_t> m_size;
    bool m_sizeAsked = false;
    std::unique_ptr<BMC_MESSAGE> m_request = std::make_unique<BMC_MESSAGE>();
    std::unique_ptr<BMC_MESSAGE> m_response = std::make_unique<BMC_MESSAGE>();
};

} // namespace Fructl

// One FRU device, byte by byte: the way of backups, of the check before a load, and of repair.
#pragma once

#include "tools/fructl/address.h"
#include "tools/fructl/bmc.h"
#include "tools/fructl/child.h"

#include "fruimage/image.h"

#include <optional>
#include <string>
#include <vector>

namespace Fructl {

/// How much of a device is read.
enum class READING {
    AREAS, ///< what its header and its areas need
    WHOLE, ///< all of it
    RESCUE ///< all of it, as far as it goes: what fails is told in DEVICE_BYTES::failure
};

struct DEVICE_BYTES {
    BYTES bytes; ///< as many as the device has or, where it does not tell, as were read
    std::vector<FruImage::RANGE> read;
    bool sizeKnown = false;
    std::string failure; ///< RESCUE: why reading ended; empty where it came to the end
};

class CDevice {
  public:
    /// A CBmc must be there and started. `name` is for messages.
    CDevice(const ADDRESS& address, std::string name);

    /// Bytes of the whole device; nothing where it does not tell. @throws CToolError, as all below
    std::optional<std::size_t> Size();
    /// Reads it, and at least `atLeast` bytes from its start.
    DEVICE_BYTES ReadContents(READING reading, std::size_t atLeast, const PROGRESS& progress = {});
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
    /// Reads `range` into its place.
    void ReadRange(const FruImage::RANGE& range, DEVICE_BYTES& device, const PROGRESS& progress);
    /// Reads what the areas need, as far as `device.bytes` go.
    void ReadAreas(DEVICE_BYTES& device, const PROGRESS& progress);
    /// The same where the device does not tell its size.
    void ReadAreasOfUnknownSize(DEVICE_BYTES& device, const PROGRESS& progress);
    void Fail(const std::string& why) const;

    ADDRESS m_address;
    std::string m_name;
    std::size_t m_chunk;     ///< bytes of a write
    std::size_t m_readChunk; ///< as far as the way goes, halved where that is too much; bridged as a write
    std::optional<std::size_t> m_size;
    bool m_sizeAsked = false;
};

} // namespace Fructl

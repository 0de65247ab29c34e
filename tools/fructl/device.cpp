#include "tools/fructl/device.h"

#include "tools/fructl/settings.h"
#include "tools/fructl/standardnames.h"
#include "tools/fructl/toolerror.h"
#include "tools/fructl/way.h"

#include "common/ipmi.h"

#include <fmt/format.h>

#include <algorithm>

#include <unistd.h>

namespace Fructl {

using namespace Frudata_Private;

namespace {

/// The memory access command of a DS1624 thermometer stands where the offset's high byte would be.
constexpr UINT8 DS1624_ACCESS = 0x17;
constexpr std::size_t DS1624_SIZE = 256;

constexpr useconds_t BUSY_PAUSE = 5'000;
constexpr std::size_t DEVICE_LIMIT = 0x10000;
/// Where a device does not tell its size, it is taken for the smallest EEPROM that holds what the header names.
constexpr std::size_t SMALLEST_EEPROM = 256;
/// An EEPROM page: a write must not cross its end.
constexpr std::size_t EEPROM_PAGE = 8;
constexpr std::size_t FRU_DEVICE_CHUNK = 16;

/// How often a request is sent again after this answer, with growing pauses.
int Retries(UINT8 code, bool eeprom) {
    if (code == COMPLETION_NODE_BUSY || code == COMPLETION_FRU_BUSY)
        return 20;
    // An EEPROM does not acknowledge while it stores what it was given before: some 10 milliseconds.
    return eeprom && code == COMPLETION_NO_ACKNOWLEDGE ? 4 : 0;
}

bool IsTooLong(UINT8 code) {
    return code == COMPLETION_BAD_LENGTH || code == COMPLETION_FIELD_TOO_LONG || code == COMPLETION_CANNOT_RETURN_COUNT;
}

bool IsSoundHeader(BYTE_VIEW header) {
    return (header[0] & 0x0F) == 1 && FruImage::ZeroChecksum(header) == 0;
}

} // namespace

CDevice::CDevice(const ADDRESS& address, std::string name)
    : m_address(address), m_name(std::move(name)), m_chunk(IsFruDevice() ? FRU_DEVICE_CHUNK : EEPROM_PAGE),
      m_readChunk(IsFruDevice() && !IsBridged() && m_address.controller == BMC_ADDRESS ? CurrentWay().readChunk
                                                                                       : m_chunk) {}

void CDevice::Fail(const std::string& why) const {
    throw CToolError(EXIT_DEVICE, m_name, why);
}

bool CDevice::IsBridged() const {
    // The FRU of a controller behind the BMC is named by a bus and device 0.
    return m_address.type == FRU_TYPE_IMBDEVICE && m_address.controller == BMC_ADDRESS && m_address.bus != NO_BUS &&
           m_address.deviceId == 0;
}

bool CDevice::IsFruDevice() const {
    return m_address.type == FRU_TYPE_IMBDEVICE ||
           (m_address.type == FRU_TYPE_MBMC_FRU && Settings().platform == FRU_PLATFORM_MBMC);
}

UINT8 CDevice::Send(const REQUEST& request, BYTES& answer) {
    BMC_REQUEST sent{.controller = m_address.controller,
                     .netFn = request.netFn,
                     .lun = request.netFn == NETFN_STORAGE ? UINT8{0} : m_address.lun,
                     .cmd = request.cmd,
                     .data = request.data};
    if (IsBridged())
        sent.bridge = BMC_REQUEST::BRIDGE{m_address.bus, m_address.deviceAddress};
    BMC_ANSWER received;
    for (int attempt = 0;; ++attempt) {
        if (const int status = SendRequest(sent, received); status != 0)
            Fail(TransportText(status));
        if (attempt >= Retries(received.completionCode, !IsFruDevice()))
            break;
        usleep(BUSY_PAUSE * static_cast<useconds_t>(attempt + 1));
    }
    answer = std::move(received.data);
    return received.completionCode;
}

std::optional<std::size_t> CDevice::Size() {
    if (m_address.type == FRU_TYPE_DS1624S)
        m_size = DS1624_SIZE;
    if (m_sizeAsked || !IsFruDevice())
        return m_size;
    m_sizeAsked = true;
    BYTES answer;
    if (Send({NETFN_STORAGE, COMMAND_GET_FRU_AREA_INFO, {m_address.deviceId}}, answer) != 0 || answer.size() < 3)
        return m_size;
    if ((answer[2] & 0x01) != 0)
        Fail("it is accessed in words, which is not supported");
    if (const std::size_t size = answer[0] + answer[1] * 256U; size != 0)
        m_size = size;
    return m_size;
}

CDevice::REQUEST CDevice::ReadRequest(std::size_t offset, std::size_t count) const {
    const auto low = static_cast<UINT8>(offset);
    const auto high = static_cast<UINT8>(offset >> 8);
    const auto wanted = static_cast<UINT8>(count);
    if (IsFruDevice())
        return {NETFN_STORAGE, COMMAND_READ_FRU_DATA, {m_address.deviceId, low, high, wanted}};
    const UINT8 first = m_address.type == FRU_TYPE_DS1624S ? DS1624_ACCESS : high;
    return {NETFN_APPLICATION, COMMAND_MASTER_WRITE_READ, {m_address.bus, m_address.deviceAddress, wanted, first, low}};
}

CDevice::REQUEST CDevice::WriteRequest(std::size_t offset, BYTE_VIEW data) const {
    REQUEST request = ReadRequest(offset, 0);
    if (IsFruDevice()) {
        request.cmd = COMMAND_WRITE_FRU_DATA;
        request.data.pop_back();
    }
    request.data.insert(request.data.end(), data.begin(), data.end());
    return request;
}

std::size_t CDevice::ReadSome(std::size_t offset, std::size_t count, BYTES& bytes) {
    BYTES answer;
    while (true) {
        const std::size_t wanted = std::min(count, m_readChunk);
        const UINT8 code = Send(ReadRequest(offset, wanted), answer);
        if (IsTooLong(code) && m_readChunk > 1) {
            m_readChunk /= 2;
            continue;
        }
        if (code != 0)
            Fail(fmt::format("reading at {:03X}h: {}", offset, CompletionCodeText(code)));
        // The first byte of Read FRU Data's answer says how many follow.
        const std::size_t lead = IsFruDevice() ? 1 : 0;
        std::size_t length = answer.size() < lead ? 0 : answer.size() - lead;
        if (lead != 0 && !answer.empty())
            length = std::min<std::size_t>(length, answer[0]);
        length = std::min(length, wanted);
        if (length == 0)
            Fail(fmt::format("reading at {:03X}h: an answer without data", offset));
        const BYTE_VIEW data = Slice(answer, lead, length);
        bytes.insert(bytes.end(), data.begin(), data.end());
        return length;
    }
}

std::size_t CDevice::WriteSome(std::size_t offset, BYTE_VIEW data) {
    BYTES answer;
    while (true) {
        const std::size_t count = std::min(data.size(), m_chunk - offset % m_chunk);
        const UINT8 code = Send(WriteRequest(offset, data.first(count)), answer);
        if (IsTooLong(code) && m_chunk > 1) {
            m_chunk /= 2;
            continue;
        }
        if (code != 0)
            Fail(fmt::format("writing at {:03X}h: {}", offset, CompletionCodeText(code)));
        if (!IsFruDevice())
            return count;
        if (answer.empty() || answer[0] == 0)
            Fail(fmt::format("writing at {:03X}h: acknowledged, but no byte written", offset));
        return std::min<std::size_t>(answer[0], count);
    }
}

void CDevice::ReadRange(const FruImage::RANGE& range, DEVICE_BYTES& device, const PROGRESS& progress) {
    BYTES bytes;
    device.read.push_back({range.offset, 0});
    while (bytes.size() < range.length) {
        ReadSome(range.offset + bytes.size(), range.length - bytes.size(), bytes);
        device.read.back().length = bytes.size();
        FruImage::Copy(device.bytes, range.offset, bytes);
        if (progress)
            progress(device.read.back().End(), std::max(device.bytes.size(), range.End()), "");
    }
}

void CDevice::ReadAreas(DEVICE_BYTES& device, const PROGRESS& progress) {
    for (auto wanted = FruImage::WantedRanges(device.bytes, device.read); !wanted.empty();
         wanted = FruImage::WantedRanges(device.bytes, device.read))
        for (const FruImage::RANGE& range : wanted)
            ReadRange(range, device, progress);
}

void CDevice::ReadAreasOfUnknownSize(DEVICE_BYTES& device, const PROGRESS& progress) {
    const auto passesEnd = [](const FruImage::FINDING& finding) { return finding.code == "area-past-end"; };
    try {
        for (std::size_t size = SMALLEST_EEPROM; size <= DEVICE_LIMIT; size *= 2) {
            device.bytes.resize(std::max(size, device.bytes.size()));
            ReadAreas(device, progress);
            const FruImage::FRU fru = FruImage::Parse(device.bytes, device.read);
            if (std::none_of(fru.findings.begin(), fru.findings.end(), passesEnd))
                break;
        }
    } catch (const CToolError&) {
        // The search behind a damaged header comes past the end of a small part; a sound one names nothing there.
        const BYTE_VIEW header = Slice(device.bytes, 0, device.read.front().length);
        if (header.size() < FruImage::HEADER_SIZE || IsSoundHeader(header.first(FruImage::HEADER_SIZE)))
            throw;
    }
    std::size_t end = 0;
    for (const FruImage::RANGE& range : device.read)
        end = std::max(end, range.End());
    device.bytes.resize(end);
}

DEVICE_BYTES CDevice::ReadContents(READING reading, std::size_t atLeast, const PROGRESS& progress) {
    DEVICE_BYTES device;
    const auto size = Size();
    device.sizeKnown = size.has_value();
    device.bytes.resize(size.value_or(0));
    try {
        if (size && (atLeast != 0 || reading != READING::AREAS))
            ReadRange({0, reading == READING::AREAS ? std::min(atLeast, *size) : *size}, device, progress);
        else if (atLeast != 0)
            ReadRange({0, atLeast}, device, progress);
        if (size) {
            ReadAreas(device, progress);
        } else {
            ReadAreasOfUnknownSize(device, progress);
            if (reading != READING::AREAS)
                ReadRange({0, device.bytes.size()}, device, progress);
        }
    } catch (const CToolError& error) {
        if (reading != READING::RESCUE || device.read.empty() || device.read.back().length == 0)
            throw;
        device.failure = error.m_why;
        device.bytes.resize(device.read.back().End());
    }
    return device;
}

void CDevice::Write(BYTE_VIEW bytes, BYTE_VIEW known, const PROGRESS& progress) {
    if (const auto size = Size(); size && bytes.size() > *size)
        throw CToolError(EXIT_REFUSED, m_name,
                         fmt::format("the image has {} bytes, the device {}", bytes.size(), *size));
    for (std::size_t offset = 0; offset < bytes.size();) {
        const BYTE_VIEW next = bytes.subspan(offset, std::min(bytes.size() - offset, m_chunk - offset % m_chunk));
        const BYTE_VIEW present = Slice(known, offset, next.size());
        if (std::equal(next.begin(), next.end(), present.begin(), present.end()))
            offset += next.size();
        else
            offset += WriteSome(offset, next);
        if (progress)
            progress(offset, bytes.size(), "");
    }
}

} // namespace Fructl

#include "tools/fructl/device.h"

#include "tools/fructl/fru.h"
#include "tools/fructl/settings.h"
#include "tools/fructl/standardnames.h"
#include "tools/fructl/toolerror.h"
#include "tools/fructl/way.h"

#include <fmt/format.h>

#include <algorithm>

#include <unistd.h>

namespace Fructl {

namespace {

constexpr UINT8 NETFN_APPLICATION = 0x06;
constexpr UINT8 NETFN_STORAGE = 0x0A;
constexpr UINT8 MASTER_WRITE_READ = 0x52;
constexpr UINT8 FRU_AREA_INFO = 0x10;
constexpr UINT8 READ_FRU_DATA = 0x11;
constexpr UINT8 WRITE_FRU_DATA = 0x12;
/// The memory access command of a DS1624 thermometer stands where the offset's high byte would be.
constexpr UINT8 DS1624_ACCESS = 0x17;
constexpr std::size_t DS1624_SIZE = 256;

constexpr unsigned TIMEOUT = 5000;
constexpr useconds_t BUSY_PAUSE = 5'000;
constexpr std::size_t DEVICE_LIMIT = 0x10000;
/// An EEPROM page: a write must not cross its end.
constexpr std::size_t EEPROM_PAGE = 8;
constexpr std::size_t FRU_DEVICE_CHUNK = 16;

/// How often a request is sent again after this answer, with growing pauses.
int Retries(UINT8 code, bool eeprom) {
    if (code == 0xC0 || code == 0x81)
        return 20;
    // An EEPROM does not acknowledge while it stores what it was given before: some 10 milliseconds.
    return eeprom && code == 0x83 ? 4 : 0;
}

bool IsTooLong(UINT8 code) {
    return code == 0xC7 || code == 0xC8 || code == 0xCA;
}

/// Where the multi-record area ends, as far as `image` shows: the end of the last record header known.
std::size_t RecordsEnd(BYTE_VIEW image, std::size_t offset, bool& known) {
    known = false;
    while (offset + RECORD_HEADER_SIZE <= image.size()) {
        const std::size_t length = image[offset + 2];
        known = length == 0 || (image[offset + 1] & 0x80) != 0;
        offset += RECORD_HEADER_SIZE + length;
        if (known)
            return offset;
    }
    return offset + RECORD_HEADER_SIZE;
}

} // namespace

CDevice::CDevice(const ADDRESS& address, std::string name)
    : m_address(address), m_name(std::move(name)), m_chunk(IsFruDevice() ? FRU_DEVICE_CHUNK : EEPROM_PAGE),
      m_readChunk(IsFruDevice() && !IsBridged() && m_address.controller == 0x20 ? CurrentWay().readChunk : m_chunk) {}

void CDevice::Fail(const std::string& why) const {
    throw CToolError(EXIT_DEVICE, m_name, why);
}

bool CDevice::IsBridged() const {
    // The FRU of a controller behind the BMC is named by a bus and device 0.
    return m_address.type == FRU_TYPE_IMBDEVICE && m_address.controller == 0x20 && m_address.bus != 0xFF &&
           m_address.deviceId == 0;
}

bool CDevice::IsFruDevice() const {
    return m_address.type == FRU_TYPE_IMBDEVICE ||
           (m_address.type == FRU_TYPE_MBMC_FRU && Settings().platform == FRU_PLATFORM_MBMC);
}

UINT8 CDevice::Send(const REQUEST& request, BYTES& answer) {
    m_request->rsSa = m_address.controller;
    m_request->netFn = request.netFn;
    m_request->lun = request.netFn == NETFN_STORAGE ? UINT8{0} : m_address.lun;
    m_request->cmd = request.cmd;
    std::copy(request.data.begin(), request.data.end(), m_request->data);
    m_request->dataLength = static_cast<UINT32>(request.data.size());
    for (int attempt = 0;; ++attempt) {
        const int status =
            IsBridged() ? ProcessSendMessage(m_request.get(), m_response.get(), m_address.bus, m_address.deviceAddress)
                        : ProcessMessage(m_request.get(), m_response.get(), TIMEOUT);
        if (status != 0)
            Fail(TransportText(status));
        if (attempt >= Retries(m_response->completionCode, !IsFruDevice()))
            break;
        usleep(BUSY_PAUSE * static_cast<useconds_t>(attempt + 1));
    }
    const std::size_t length = std::min<std::size_t>(m_response->dataLength, sizeof m_response->data);
    answer.assign(m_response->data, m_response->data + length);
    return m_response->completionCode;
}

std::optional<std::size_t> CDevice::Size() {
    if (m_address.type == FRU_TYPE_DS1624S)
        m_size = DS1624_SIZE;
    if (m_sizeAsked || !IsFruDevice())
        return m_size;
    m_sizeAsked = true;
    BYTES answer;
    if (Send({NETFN_STORAGE, FRU_AREA_INFO, {m_address.deviceId}}, answer) != 0 || answer.size() < 3)
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
        return {NETFN_STORAGE, READ_FRU_DATA, {m_address.deviceId, low, high, wanted}};
    const UINT8 first = m_address.type == FRU_TYPE_DS1624S ? DS1624_ACCESS : high;
    return {NETFN_APPLICATION, MASTER_WRITE_READ, {m_address.bus, m_address.deviceAddress, wanted, first, low}};
}

CDevice::REQUEST CDevice::WriteRequest(std::size_t offset, BYTE_VIEW data) const {
    REQUEST request = ReadRequest(offset, 0);
    if (IsFruDevice()) {
        request.cmd = WRITE_FRU_DATA;
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

void CDevice::ReadTo(std::size_t end, BYTES& image, const PROGRESS& progress) {
    end = std::min(end, Size().value_or(DEVICE_LIMIT));
    while (image.size() < end) {
        ReadSome(image.size(), end - image.size(), image);
        if (progress)
            progress(image.size(), end, "");
    }
}

BYTES CDevice::ReadContents(std::size_t atLeast, const PROGRESS& progress) {
    BYTES image;
    const std::size_t first = atLeast == WHOLE ? Size().value_or(HEADER_SIZE) : std::max(atLeast, HEADER_SIZE);
    ReadTo(first, image, progress);
    FRU fru;
    if (!CheckHeader(image, fru))
        return image;
    std::size_t end = HEADER_SIZE;
    for (const AREA_ROW& row : Areas()) {
        const std::size_t offset = image[row.headerByte] * OFFSET_UNIT;
        if (offset == 0)
            continue;
        if (row.headerLength != 0) {
            ReadTo(offset + 2, image, progress);
            end = std::max(end, offset + (offset + 1 < image.size() ? image[offset + 1] * OFFSET_UNIT : 0));
        } else if (row.area == FRU_AREA_INTERNAL_USE) {
            end = std::max(end, offset + InternalUseLength(image));
        } else {
            bool known = false;
            std::size_t size = 0;
            while (!known && size != image.size()) {
                size = image.size();
                const std::size_t next = RecordsEnd(image, offset, known);
                ReadTo(next, image, progress);
                end = std::max(end, known ? next : end);
                known = known && image.size() >= next;
            }
        }
    }
    ReadTo(end, image, progress);
    return image;
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

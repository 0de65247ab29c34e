#include "tests/system/support.h"

#include "frudata/bmclib.h"
#include "frudata/debug.h"
#include "sim/fronts.h"
#include "tests/support/physicalmemory.h"

#include <algorithm>
#include <cstring>
#include <unistd.h>

extern "C" {
// No test waits.
int usleep(useconds_t) {
    return 0;
}
unsigned int sleep(unsigned int) {
    return 0;
}
}

namespace Frudata_Tests {

std::vector<std::wstring> g_progress;

namespace {

unsigned int Progress(PROGRESS_CALLBACK_TYPE type, const WCHAR* message, unsigned int current, unsigned int total) {
    g_progress.push_back(std::to_wstring(type) + L" " + message + L" " + std::to_wstring(current) + L" " +
                         std::to_wstring(total));
    return 77;
}

/// A request that moves bytes at `offset`, up to its count or data; Master Write-Read has its count inside.
BYTES Request(const ADDRESS& address, ACCESS access, UINT8 fruCommand, std::size_t offset, UINT8 count) {
    const auto low = static_cast<UINT8>(offset & 0xFF);
    const auto high = static_cast<UINT8>(offset >> 8);
    if (access == ACCESS::FRU)
        return {address.controller, 0x0A, 0, fruCommand, address.deviceId, low, high};
    // A frame on the KCS ports goes to LUN 0.
    const UINT8 lun = g_front == FRONT::KCS ? UINT8{0} : address.lun;
    const UINT8 first = access == ACCESS::EEPROM ? high : UINT8{0x17};
    return {address.controller, 0x06, lun, 0x52, address.bus, address.deviceAddress, count, first, low};
}

} // namespace

REQUESTS Reads(const ADDRESS& address, ACCESS access, std::size_t offset, std::size_t count) {
    REQUESTS requests;
    for (const std::size_t end = offset + count; offset < end; offset += 8) {
        const auto piece = static_cast<UINT8>(std::min<std::size_t>(8, end - offset));
        requests.push_back(Request(address, access, 0x11, offset, piece));
        if (access == ACCESS::FRU)
            requests.back().push_back(piece);
    }
    return requests;
}

REQUESTS Writes(const ADDRESS& address, ACCESS access, std::size_t offset, const BYTES& data) {
    REQUESTS requests;
    for (std::size_t done = 0; done < data.size(); done += 8) {
        requests.push_back(Request(address, access, 0x12, offset + done, 0));
        Append(requests.back(), Slice(data, done, std::min<std::size_t>(8, data.size() - done)));
    }
    return requests;
}

REQUESTS Load(const ADDRESS& address, ACCESS access, const BYTES& image) {
    const auto read = [&](std::size_t offset, std::size_t count) { return Reads(address, access, offset, count); };
    REQUESTS requests = read(0, 8);
    for (const unsigned int area : {BOARD, PRODUCT, CHASSIS})
        if (const std::size_t start = Start(image, area))
            requests = requests + read(start, 2) + read(start, InfoArea(image, area).size());
    if (const std::size_t start = Start(image, INTERNAL))
        requests = requests + read(start, Start(image, CHASSIS) - start);
    std::size_t offset = Start(image, MULTIRECORD);
    for (bool isLast = offset == 0; !isLast;) {
        const std::size_t size = image[offset + 2] + 5U;
        requests = requests + read(offset, 3) + read(offset, size);
        isLast = (image[offset + 1] & 0x80) != 0;
        offset += size;
    }
    return requests;
}

REQUESTS operator+(REQUESTS left, const REQUESTS& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

BYTES Slice(const BYTES& bytes, std::size_t offset, std::size_t count) {
    const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(offset);
    return BYTES(first, first + static_cast<std::ptrdiff_t>(count));
}

BYTES With(BYTES image, std::size_t offset, const BYTES& bytes) {
    std::copy(bytes.begin(), bytes.end(), image.begin() + static_cast<std::ptrdiff_t>(offset));
    if (offset < 7)
        image[7] = ZeroChecksum(image.data(), 7);
    return image;
}

std::size_t Start(const BYTES& image, unsigned int area) {
    return image[area] * std::size_t{8};
}

BYTES InfoArea(const BYTES& image, unsigned int area) {
    return Slice(image, Start(image, area), image[Start(image, area) + 1] * std::size_t{8});
}

std::wstring Format(unsigned int id) {
    // A 4-byte count, a 4-byte offset a text, then the texts with 2 bytes a character; the English ones are ASCII.
    static const std::string table = ReadFile(FRUDATA_TEXTS "/enus/frudata/str/frudata.str");
    UINT32 at = 0;
    std::memcpy(&at, &table.at(4 + 4 * std::size_t{id}), sizeof at);
    std::wstring text;
    for (; table.at(at) != 0; at += 2)
        text += static_cast<wchar_t>(table[at]);
    return text;
}

std::wstring Identifier(const ADDRESS& address) {
    return Text(134, unsigned{address.deviceId}, unsigned{address.controller}, unsigned{address.deviceAddress},
                unsigned{address.bus});
}

CSystemTest::CSystemTest() {
    std::filesystem::create_directory_symlink(FRUDATA_TEXTS "/enus", "enus");
    LIBDBG_DEBUG_LEVEL = 1;
    g_progress.clear();
    m_bmc.SetRecording(true);
    SetCurrentKcs(g_front == FRONT::KCS ? &m_kcs : nullptr);
    SetCurrentBmc(g_front == FRONT::KCS ? nullptr : &m_bmc);
    EXPECT_EQ(m_table->Initialize(m_table, 0), 0U);
    EXPECT_TRUE(g_front != FRONT::SESSION || SelectIPMIInterface(IPMI_INTERFACE_USB));
    EXPECT_EQ(m_table->SetProgressCallback(m_table, Progress), 0U);
}

CSystemTest::~CSystemTest() {
    EXPECT_TRUE(SelectIPMIInterface(IPMI_INTERFACE_KCS));
    SetCurrentKcs(nullptr);
    SetCurrentBmc(nullptr);
    EXPECT_EQ(m_kcs.Counts().violations, 0U);
}

EFI_STATUS CSystemTest::Set(FRU_AREA area, FRU_FIELD field, const std::string& value) {
    EXPECT_EQ(m_table->SelectAreaEnum(m_table, area), 0U);
    EXPECT_EQ(m_table->SelectFieldEnum(m_table, field), 0U);
    return SetSelected(value);
}

REQUESTS CSystemTest::Requests(FRONT front) {
    REQUESTS requests;
    for (const auto& [way, channel, controller, request, answer] : m_bmc.Exchanges()) {
        EXPECT_TRUE(way == g_front || way == FRONT::BRIDGE);
        if (way != front)
            continue;
        requests.push_back({controller, request.netFn, request.lun, request.cmd});
        Append(requests.back(), request.data);
    }
    m_bmc.ClearExchanges();
    return requests;
}

void CSystemTest::Answer(UINT8 cmd, std::vector<int> codes) {
    m_bmc.SetScript([cmd, codes, next = 0U](const IpmiRequest& request) mutable {
        const int code = request.cmd == cmd && next < codes.size() ? codes[next++] : OWN_ANSWER;
        if (code == OWN_ANSWER)
            return std::optional<IpmiAnswer>();
        if (code == NOTHING_MOVED)
            return std::optional(IpmiAnswer{.data = {0}});
        return std::optional(IpmiAnswer{.completionCode = static_cast<UINT8>(code), .data = {}});
    });
}

} // namespace Frudata_Tests

#include "tests/system/support.h"

#include "frudata/debug.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <sys/syscall.h>
#include <unistd.h>

extern "C" {
// The firmware of the machine that runs the tests is none of their business. Under the name that 64-bit file
// offsets give the function.
int HostOpen(const char* path, int flags, ...) __asm__("open64");
int HostOpen(const char* path, int flags, ...) {
    return std::strcmp(path, "/dev/mem") == 0 ? -1 : static_cast<int>(syscall(SYS_openat, -100, path, flags, 0600));
}
// No test waits.
int usleep(useconds_t) {
    return 0;
}
unsigned int sleep(unsigned int) {
    return 0;
}
}

namespace Frudata_Tests {

namespace {

UINT8 Byte(std::size_t value) {
    return static_cast<UINT8>(value & 0xFF);
}

/// A request that moves bytes at `offset`: `count` is 0 for a write.
BYTES Place(const ADDRESS& address, ACCESS access, std::size_t offset, std::size_t count) {
    if (access == ACCESS::FRU)
        return {address.deviceId, Byte(offset), Byte(offset >> 8)};
    const UINT8 first = access == ACCESS::EEPROM ? Byte(offset >> 8) : UINT8{0x17};
    return {address.bus, address.deviceAddress, Byte(count), first, Byte(offset)};
}

std::string TransferLine(const ADDRESS& address, ACCESS access, UINT8 fruCommand, const BYTES& data) {
    if (access == ACCESS::FRU)
        return Line(address.controller, 0x0A, 0, fruCommand, data);
    // A frame on the KCS ports goes to LUN 0.
    return Line(address.controller, 0x06, g_front == FRONT::KCS ? 0 : address.lun, 0x52, data);
}

std::string ReadFile(const char* name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::wstring> ReadTable() {
    const std::string content = ReadFile(FRUDATA_TEXTS "/enus/frudata/str/frudata.str");
    const auto number = [&content](std::size_t offset, int bytes) {
        UINT32 value = 0;
        while (bytes-- > 0)
            value = value << 8 | static_cast<UINT8>(content.at(offset + static_cast<std::size_t>(bytes)));
        return value;
    };
    std::vector<std::wstring> texts(number(0, 4));
    for (std::size_t i = 0; i < texts.size(); ++i)
        for (UINT32 at = number(4 + 4 * i, 4); number(at, 2) != 0; at += 2)
            texts[i] += static_cast<wchar_t>(number(at, 2));
    return texts;
}

} // namespace

std::string Line(unsigned int controller, unsigned int netFn, unsigned int lun, unsigned int cmd, const BYTES& data) {
    char start[32];
    std::snprintf(start, sizeof start, "%02X %02X/%u %02X:", controller, netFn, lun, cmd);
    std::string line = start;
    for (const UINT8 byte : data) {
        std::snprintf(start, sizeof start, " %02X", byte);
        line += start;
    }
    return line;
}

LINES Reads(const ADDRESS& address, ACCESS access, std::size_t offset, std::size_t count) {
    LINES lines;
    for (std::size_t end = offset + count; offset < end; offset += 8) {
        const std::size_t piece = std::min<std::size_t>(8, end - offset);
        BYTES data = Place(address, access, offset, piece);
        if (access == ACCESS::FRU)
            data.push_back(Byte(piece));
        lines.push_back(TransferLine(address, access, 0x11, data));
    }
    return lines;
}

LINES Writes(const ADDRESS& address, ACCESS access, std::size_t offset, const BYTES& data) {
    LINES lines;
    for (std::size_t done = 0; done < data.size(); done += 8) {
        BYTES request = Place(address, access, offset + done, 0);
        Append(request, Slice(data, done, std::min<std::size_t>(8, data.size() - done)));
        lines.push_back(TransferLine(address, access, 0x12, request));
    }
    return lines;
}

LINES Load(const ADDRESS& address, ACCESS access, const BYTES& image) {
    LINES lines = Reads(address, access, 0, 8);
    for (const unsigned int area : {BOARD, PRODUCT, CHASSIS})
        if (image[area] != 0)
            lines = lines + Reads(address, access, Start(image, area), 2) +
                    Reads(address, access, Start(image, area), InfoArea(image, area).size());
    if (image[INTERNAL] != 0)
        lines = lines + Reads(address, access, Start(image, INTERNAL), Start(image, CHASSIS) - Start(image, INTERNAL));
    std::size_t offset = Start(image, MULTIRECORD);
    for (bool isLast = offset == 0; !isLast;) {
        lines = lines + Reads(address, access, offset, 3) + Reads(address, access, offset, image[offset + 2] + 5U);
        isLast = (image[offset + 1] & 0x80) != 0;
        offset += image[offset + 2] + 5U;
    }
    return lines;
}

LINES operator+(LINES left, const LINES& right) {
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

const std::wstring& Format(unsigned int id) {
    static const std::vector<std::wstring> texts = ReadTable();
    return texts.at(id);
}

std::wstring Identifier(const ADDRESS& address) {
    return Text(134, unsigned{address.deviceId}, unsigned{address.controller}, unsigned{address.deviceAddress},
                unsigned{address.bus});
}

CSystemTest::CSystemTest() : m_before(std::filesystem::current_path()) {
    std::string name = (std::filesystem::temp_directory_path() / "frudata-XXXXXX").string();
    m_path = mkdtemp(name.data());
    std::filesystem::current_path(m_path);
    std::filesystem::create_directory_symlink(FRUDATA_TEXTS "/enus", "enus");
    LIBDBG_DEBUG_LEVEL = 1;
    g_progress.clear();
    m_bmc.SetRecording(true);
    PrepareFront(m_bmc, m_kcs);
    EXPECT_EQ(m_table->Initialize(m_table, 0), 0U);
    OpenFront();
    EXPECT_EQ(m_table->SetProgressCallback(m_table, Progress), 0U);
}

CSystemTest::~CSystemTest() {
    m_table->DeInitialize(m_table);
    CloseFront();
    EXPECT_EQ(m_kcs.Counts().violations, 0U);
    std::filesystem::current_path(m_before);
    std::filesystem::remove_all(m_path);
}

void CSystemTest::Restart(int platform) {
    EXPECT_EQ(m_table->DeInitialize(m_table), 0U);
    EXPECT_EQ(m_table->Initialize(m_table, platform), 0U);
}

EFI_STATUS CSystemTest::LoadImage(const BYTES& image, const ADDRESS& address) {
    m_bmc.AddFruDevice(address.deviceId, image);
    return LoadAt(address);
}

EFI_STATUS CSystemTest::LoadAt(const ADDRESS& a) {
    return m_table->LoadFruAtAddress(m_table, a.type, a.lun, a.deviceAddress, a.bus, a.controller, a.deviceId, 0xFF, 0);
}

EFI_STATUS CSystemTest::Find(const ADDRESS& a) {
    return m_table->FindFruAtAddressAndChecksumHeader(m_table, a.type, a.lun, a.deviceAddress, a.bus, a.controller,
                                                      a.deviceId);
}

void CSystemTest::Select(unsigned int fru) {
    EXPECT_EQ(m_table->SelectList(m_table, FRU_LIST_SYSTEM), 0U);
    EXPECT_EQ(m_table->SelectFru(m_table, fru), 0U);
}

EFI_STATUS CSystemTest::Set(FRU_AREA area, FRU_FIELD field, const std::string& value) {
    EXPECT_EQ(m_table->SelectAreaEnum(m_table, area), 0U);
    EXPECT_EQ(m_table->SelectFieldEnum(m_table, field), 0U);
    return m_table->SetFieldDataValue(m_table, reinterpret_cast<const UINT8*>(value.data()),
                                      static_cast<unsigned int>(value.size()));
}

std::wstring CSystemTest::Value(FRU_AREA area, FRU_FIELD field) {
    const wchar_t* value = nullptr;
    EXPECT_EQ(m_table->SelectAreaEnum(m_table, area), 0U);
    EXPECT_EQ(m_table->SelectFieldEnum(m_table, field), 0U);
    EXPECT_EQ(m_table->GetFieldStringValue(m_table, value), 0U);
    return value ? value : L"(null)";
}

unsigned int CSystemTest::NumberOfFrus() {
    unsigned int locators = 99;
    unsigned int frus = 99;
    if (m_table->SelectList(m_table, FRU_LIST_SYSTEM) == FRU_STATUS_NOT_LOADED)
        return 0;
    EXPECT_EQ(m_table->GetNumberOfFrus(m_table, locators, frus), 0U);
    EXPECT_EQ(locators, 0U);
    return frus;
}

std::wstring CSystemTest::LastError() {
    const wchar_t* message = nullptr;
    m_table->GetLastErrorMessage(m_table, message);
    return message ? message : L"";
}

LINES CSystemTest::Requests(FRONT front) {
    LINES lines;
    for (const Exchange& exchange : m_bmc.Exchanges()) {
        EXPECT_TRUE(exchange.front == g_front || exchange.front == FRONT::BRIDGE);
        if (exchange.front == front)
            lines.push_back(Line(exchange.controller, exchange.request.netFn, exchange.request.lun,
                                 exchange.request.cmd, exchange.request.data));
    }
    m_bmc.ClearExchanges();
    return lines;
}

std::string CSystemTest::TakeLog() {
    std::string log = ReadFile("DBGLOG.txt");
    std::ofstream("DBGLOG.txt");
    return log;
}

void CSystemTest::Answer(UINT8 cmd, std::vector<int> codes) {
    m_bmc.SetScript([cmd, codes, next = std::size_t{0}](const IpmiRequest& request) mutable {
        std::optional<IpmiAnswer> answer;
        if (request.cmd != cmd || next == codes.size())
            return answer;
        const int code = codes[next++];
        if (code == NOTHING_MOVED)
            answer = IpmiAnswer{.data = {0}};
        else if (code != OWN_ANSWER)
            answer = IpmiAnswer{.completionCode = static_cast<UINT8>(code), .data = {}};
        return answer;
    });
}

std::vector<std::wstring> g_progress;

unsigned int Progress(PROGRESS_CALLBACK_TYPE type, const WCHAR* message, unsigned int current, unsigned int total) {
    g_progress.push_back(std::to_wstring(type) + L" " + message + L" " + std::to_wstring(current) + L" " +
                         std::to_wstring(total));
    return 77;
}

} // namespace Frudata_Tests

#include "support.h"

#include "frudata/bmclib.h"

#include <numeric>

// The driver that a host may supply: there is one, so the library looks no further, but it reaches nothing.
extern "C" {
__attribute__((visibility("default"))) int open_imb() {
    return 1;
}
__attribute__((visibility("default"))) int close_imb() {
    return 0;
}
__attribute__((visibility("default"))) int SendTimedImbpRequest(const _IMBPREQUESTDATA*, int, UINT8*, int*, UINT8*) {
    return 77;
}
}

namespace Frudata_Tests {

BYTES operator+(BYTES left, const BYTES& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

BYTES Field(const std::string& data, UINT8 type) {
    return BYTES{static_cast<UINT8>(type | data.size())} + BYTES(data.begin(), data.end());
}

BYTES WithChecksum(BYTES bytes) {
    bytes.push_back(static_cast<UINT8>(0U - std::accumulate(bytes.begin(), bytes.end(), 0U)));
    return bytes;
}

BYTES CompactArea(BYTES start, std::size_t size) {
    start[1] = static_cast<UINT8>(size / 8);
    return start + BYTES{0xC1};
}

BYTES FullArea(const BYTES& start, std::size_t size) {
    BYTES area = CompactArea(start, size);
    area.resize(size - 1);
    return WithChecksum(area);
}

FRU_BYTES RichFru() {
    FRU_BYTES fru;
    fru.internalUse = {0x01, 0xAB, 0x02, 0x81};
    fru.chassis = CompactArea(BYTES{1, 0, 0x11} + Field("CP") + Field("CS1") + Field("cc"), 32);
    fru.board = CompactArea(BYTES{1, 0, 0x19, 0x01, 0x02, 0x03} + Field("BMaker") + Field("BName") + Field("BSer") +
                                Field("\x12\x34", 0x40) + Field("BFile") + Field("c1") + Field("c22") + Field("c333"),
                            64);
    fru.product = CompactArea(BYTES{1, 0, 0} + Field("PMaker") + Field("PName") + Field("PPart") + Field("PVer") +
                                  Field("PSer") + Field("Asset") + Field("") + Field("pc"),
                              64);
    fru.multiRecord = {0xC0, 0x02, 0x03, 0xFA, 0x41, 1, 2, 3, 0xC1, 0x82, 0x01, 0xF6, 0xC6, 0x0A};
    return fru;
}

std::string Hex(const BYTES& bytes) {
    std::string text;
    for (const UINT8 byte : bytes) {
        text += "0123456789ABCDEF"[byte >> 4];
        text += "0123456789abcdef"[byte & 15];
    }
    return text;
}

std::string FruText(const FRU_BYTES& fru) {
    BYTES header = {1};
    std::string blocks;
    for (const auto& [tag, bytes] : {std::pair("_SEE_INTERNAL\n", &fru.internalUse),
                                     {"_SEE_CHASSIS\n", &fru.chassis},
                                     {"_SEE_BOARD\n", &fru.board},
                                     {"_SEE_PRODUCT\n", &fru.product},
                                     {"_SEE_MULTIREC\n", &fru.multiRecord}}) {
        header.push_back(bytes->empty() ? 0 : static_cast<UINT8>(header.size()));
        if (!bytes->empty())
            blocks += tag + Hex(*bytes) + "\n";
    }
    header.push_back(0);
    return "_LF_NAME\t'name'\n_LF_VERSION\t'1.0'\n_LF_FMT_VER\t'1.50'\n_IPMI_VERSION\t'1.00'\n_FRU (\n"
           "_FRU_TITLE\t'Title'\n_START_ADDR\t0000\n_DATA_LEN\t0100\n_NVS_TYPE\t'IMBDEVICE'\n_DEV_ID\t\t05\n"
           "_DEV_CNTR\t20\n_NVS_LUN\t01\n_DEV_BUS\tFF\n_DEV_ADDRESS\t3C\n_SEE_COMMON\n" +
           Hex(WithChecksum(header)) + "\n" + blocks + ")\n";
}

std::string WithLine(const std::string& text, const std::string& key, const std::string& line) {
    const std::size_t start = ("\n" + text).find("\n" + key);
    return text.substr(0, start) + line + text.substr(text.find('\n', start));
}

std::string TextTable(const std::vector<UINT32>& words, const std::u16string& units, int sum) {
    std::string content(reinterpret_cast<const char*>(words.data()), words.size() * 4);
    content.append(reinterpret_cast<const char*>(units.data()), units.size() * 2);
    for (std::size_t i = 0; i + 1 < content.size(); i += 2)
        sum -= static_cast<UINT8>(content[i]) | static_cast<UINT8>(content[i + 1]) << 8;
    return content + static_cast<char>(sum) + static_cast<char>(sum >> 8);
}

void WriteTexts(const std::string& directory, const std::wstring& prefix,
                const std::map<UINT32, std::wstring>& others) {
    constexpr UINT32 count = 139;
    std::wstring texts[count];
    for (UINT32 number = 0; number < count; ++number)
        texts[number] = prefix + std::to_wstring(number);
    const std::pair<const wchar_t*, std::vector<UINT32>> arguments[] = {
        {L" %u %u %u %u %u %u", {35}},
        {L" %u %u %u %u", {134}},
        {L" %u %u", {63}},
        {L" %s", {89, 98, 100}},
        {L" %ls %s", {90, 94, 95, 96, 97}},
        {L" %ls", {64, 104, 106, 107, 108, 109, 113, 137}}};
    for (const auto& [placeholders, numbers] : arguments)
        for (const UINT32 number : numbers)
            texts[number] += placeholders;

    for (const auto& [number, text] : others)
        texts[number] = text;
    std::vector<UINT32> words(1 + 2 * count, count);
    std::u16string units;
    for (UINT32 number = 0; number < count; ++number) {
        words[1 + number] = static_cast<UINT32>(words.size() * 4 + units.size() * 2);
        words[1 + count + number] = static_cast<UINT32>(texts[number].size() + 1);
        units.append(texts[number].begin(), texts[number].end()) += u'\0';
    }
    std::filesystem::create_directories(directory + "/frudata/str");
    WriteFile(directory + "/frudata/str/frudata.str", TextTable(words, units));
}

CLibraryTest::CLibraryTest() {
    WriteTexts("enus", L"T");
    LIBDBG_DEBUG_LEVEL = 1;
    Restart(0);
}

void CLibraryTest::Restart(int platform) {
    m_table->DeInitialize(m_table);
    EXPECT_EQ(m_table->Initialize(m_table, platform), 0U);
}

EFI_STATUS CLibraryTest::Load(const std::string& content) {
    WriteFile("in.fru", content);
    return m_table->LoadConfigurationFromFile(m_table, L"in.fru", nullptr);
}

void CLibraryTest::LoadAndSelect(const FRU_BYTES& fru, FRU_AREA area) {
    ASSERT_EQ(Load(FruText(fru)), 0U) << FruText(fru);
    ASSERT_EQ(m_table->SelectAreaEnum(m_table, area), 0U);
}

std::string CLibraryTest::Saved() {
    EXPECT_EQ(m_table->SaveConfigurationToFile(m_table, L"out.fru", nullptr), 0U);
    return ReadFile("out.fru");
}

std::wstring CLibraryTest::Value(unsigned int field) {
    EXPECT_EQ(m_table->SelectFieldInteger(m_table, field), 0U);
    const wchar_t* value = Told(m_table->GetFieldStringValue);
    return value ? value : L"(null)";
}

BYTES CLibraryTest::Data(unsigned int field) {
    const UINT8* data = nullptr;
    unsigned int length = 0;
    EXPECT_EQ(m_table->SelectFieldInteger(m_table, field), 0U);
    EXPECT_EQ(m_table->GetFieldDataValue(m_table, data, length), 0U);
    return BYTES(data, data + length);
}

} // namespace Frudata_Tests

#include "support.h"

#include "frudata/bmclib.h"

#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>

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

BYTES Fill(std::size_t count, UINT8 value) {
    return BYTES(count, value);
}

BYTES Bytes(const std::string& text) {
    return BYTES(text.begin(), text.end());
}

BYTES Field(const std::string& data, UINT8 type) {
    return BYTES{static_cast<UINT8>(type | data.size())} + Bytes(data);
}

UINT8 ZeroChecksum(const BYTES& bytes) {
    unsigned int sum = 0;
    for (const UINT8 byte : bytes)
        sum += byte;
    return static_cast<UINT8>(0U - sum);
}

BYTES CompactArea(BYTES start, std::size_t size) {
    start[1] = static_cast<UINT8>(size / 8);
    return start + BYTES{0xC1};
}

BYTES FullArea(const BYTES& start, std::size_t size) {
    BYTES area = CompactArea(start, size);
    area.resize(size - 1);
    area.push_back(ZeroChecksum(area));
    return area;
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

FRU_BYTES BoardFru() {
    FRU_BYTES fru;
    fru.board = RichFru().board;
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
    const std::pair<const char*, const BYTES*> areas[] = {{"_SEE_INTERNAL", &fru.internalUse},
                                                          {"_SEE_CHASSIS", &fru.chassis},
                                                          {"_SEE_BOARD", &fru.board},
                                                          {"_SEE_PRODUCT", &fru.product},
                                                          {"_SEE_MULTIREC", &fru.multiRecord}};
    BYTES header = {1};
    std::string blocks;
    for (const auto& [tag, bytes] : areas) {
        header.push_back(bytes->empty() ? 0 : static_cast<UINT8>(header.size()));
        if (!bytes->empty())
            blocks += std::string(tag) + "\n" + Hex(*bytes) + "\n";
    }
    header.push_back(0);
    header.push_back(ZeroChecksum(header));
    return "_LF_NAME\t'name'\n_LF_VERSION\t'1.0'\n_LF_FMT_VER\t'1.50'\n_IPMI_VERSION\t'1.00'\n_FRU (\n"
           "_FRU_TITLE\t'Title'\n_START_ADDR\t0000\n_DATA_LEN\t0100\n_NVS_TYPE\t'IMBDEVICE'\n_DEV_ID\t\t05\n"
           "_DEV_CNTR\t20\n_NVS_LUN\t01\n_DEV_BUS\tFF\n_DEV_ADDRESS\t3C\n_SEE_COMMON\n" +
           Hex(header) + "\n" + blocks + ")\n";
}

std::string WithLine(const std::string& text, const std::string& key, const std::string& line) {
    const std::size_t start = ("\n" + text).find("\n" + key);
    return text.substr(0, start) + line + text.substr(text.find('\n', start));
}

void WriteFile(const std::string& name, const std::string& content) {
    std::ofstream(name, std::ios::binary) << content;
}

std::string ReadFile(const std::string& name) {
    std::ostringstream content;
    content << std::ifstream(name, std::ios::binary).rdbuf();
    return content.str();
}

void WriteTexts(const std::string& directory, const std::wstring& prefix) {
    static const std::map<unsigned int, const wchar_t*> arguments = {{35, L" %u %u %u %u %u %u"},
                                                                     {63, L" %u %u"},
                                                                     {64, L" %ls"},
                                                                     {89, L" %s"},
                                                                     {90, L" %ls %s"},
                                                                     {94, L" %ls %s"},
                                                                     {95, L" %ls %s"},
                                                                     {96, L" %ls %s"},
                                                                     {97, L" %ls %s"},
                                                                     {98, L" %s"},
                                                                     {100, L" %s"},
                                                                     {104, L" %ls"},
                                                                     {106, L" %ls"},
                                                                     {107, L" %ls"},
                                                                     {108, L" %ls"},
                                                                     {109, L" %ls"},
                                                                     {113, L" %ls"},
                                                                     {134, L" %u %u %u %u"},
                                                                     {137, L" %ls"}};
    constexpr UINT32 count = 139;
    std::vector<UINT16> words(2 + 4 * count);
    const auto put = [&words](std::size_t index, std::size_t value) {
        words[index] = static_cast<UINT16>(value);
        words[index + 1] = static_cast<UINT16>(value >> 16);
    };
    put(0, count);
    for (UINT32 number = 0; number < count; ++number) {
        const auto found = arguments.find(number);
        const std::wstring text = prefix + std::to_wstring(number) + (found == arguments.end() ? L"" : found->second);
        put(2 + 2 * number, words.size() * 2);
        put(2 + 2 * count + 2 * number, text.size() + 1);
        for (const wchar_t character : text)
            words.push_back(static_cast<UINT16>(character));
        words.push_back(0);
    }
    UINT16 sum = 0;
    for (const UINT16 word : words)
        sum = static_cast<UINT16>(sum + word);
    words.push_back(static_cast<UINT16>(-sum));
    std::filesystem::create_directories(directory + "/frudata/str");
    WriteFile(directory + "/frudata/str/frudata.str",
              std::string(reinterpret_cast<const char*>(words.data()), words.size() * 2));
}

std::vector<std::wstring> ReadTexts(const std::string& fileName) {
    const std::string content = ReadFile(fileName);
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

CScratchDirectory::CScratchDirectory() : m_before(std::filesystem::current_path()) {
    std::string name = (std::filesystem::temp_directory_path() / "frudata-XXXXXX").string();
    m_path = mkdtemp(name.data());
    std::filesystem::current_path(m_path);
}

CScratchDirectory::~CScratchDirectory() {
    std::filesystem::current_path(m_before);
    std::filesystem::remove_all(m_path);
}

CLibraryTest::CLibraryTest() {
    WriteTexts("enus", L"T");
    LIBDBG_DEBUG_LEVEL = 1;
    EXPECT_EQ(m_table->Initialize(m_table, 0), 0U);
}

CLibraryTest::~CLibraryTest() {
    m_table->DeInitialize(m_table);
}

EFI_STATUS CLibraryTest::Load(const std::string& content) {
    WriteFile("in.fru", content);
    return m_table->LoadConfigurationFromFile(m_table, L"in.fru", nullptr);
}

void CLibraryTest::LoadAndSelect(const FRU_BYTES& fru, FRU_AREA area) {
    ASSERT_EQ(Load(FruText(fru)), 0U) << FruText(fru);
    ASSERT_EQ(m_table->SelectAreaEnum(m_table, area), 0U);
}

EFI_STATUS CLibraryTest::Set(unsigned int field, const std::string& value) {
    EXPECT_EQ(m_table->SelectFieldInteger(m_table, field), 0U);
    return m_table->SetFieldDataValue(m_table, reinterpret_cast<const UINT8*>(value.data()),
                                      static_cast<unsigned int>(value.size()));
}

std::wstring CLibraryTest::Value(unsigned int field) {
    const wchar_t* value = nullptr;
    EXPECT_EQ(m_table->SelectFieldInteger(m_table, field), 0U);
    EXPECT_EQ(m_table->GetFieldStringValue(m_table, value), 0U);
    return value ? value : L"(null)";
}

BYTES CLibraryTest::Data(unsigned int field) {
    const UINT8* data = nullptr;
    unsigned int length = 0;
    EXPECT_EQ(m_table->SelectFieldInteger(m_table, field), 0U);
    EXPECT_EQ(m_table->GetFieldDataValue(m_table, data, length), 0U);
    return BYTES(data, data + length);
}

unsigned int CLibraryTest::MaxFieldSize() {
    unsigned int size = 0;
    EXPECT_EQ(m_table->GetMaxFieldSize(m_table, size), 0U);
    return size;
}

std::wstring CLibraryTest::LastError() {
    const wchar_t* message = nullptr;
    m_table->GetLastErrorMessage(m_table, message);
    return message ? message : L"";
}

} // namespace Frudata_Tests

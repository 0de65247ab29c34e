#include "bench/host.h"

#include "fruimage/imagebuilder.h"
#include "sim/fronts.h"
#include "sim/sdrrecords.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <fstream>
#include <memory>
#include <sys/syscall.h>
#include <unistd.h>

extern "C" {
// The firmware of the machine that measures is none of its business. Under the name that 64-bit file offsets give
// the function.
int HostOpen(const char* path, int flags, ...) __asm__("open64");
int HostOpen(const char* path, int flags, ...) {
    return std::strcmp(path, "/dev/mem") == 0 ? -1 : static_cast<int>(syscall(SYS_openat, -100, path, flags, 0600));
}
}

namespace Frudata_Bench {

using namespace Frudata_Sim;

namespace {

constexpr std::size_t END_AND_CHECKSUM = 2;
constexpr std::size_t CUSTOM_FIELD = 30;
constexpr char ASSET_TAG[] = "AT-0123456789";

// Texts that fill an area of `size` bytes, of which `used` are taken, to its last byte.
std::vector<FruImage::FIELD_DESCRIPTION> Filling(std::size_t used, std::size_t size) {
    std::vector<FruImage::FIELD_DESCRIPTION> fields;
    while (used + END_AND_CHECKSUM < size) {
        std::size_t length = size - used - END_AND_CHECKSUM - 1;
        if (length > 2 * CUSTOM_FIELD)
            length = CUSTOM_FIELD;
        std::string text = "Custom field " + std::to_string(fields.size()) + std::string(length, '.');
        text.resize(length);
        fields.emplace_back(text);
        used += length + 1;
    }
    return fields;
}

} // namespace

BYTES FruImage(std::size_t size) {
    const bool isSmall = size == FRU_SIZES[0];
    const std::size_t internalUse = size == LARGEST_FRU ? 504 : 248;
    const std::size_t area = size == LARGEST_FRU ? 512 : 256;
    FruImage::CHASSIS_VALUES chassis{.chassisType = 0x11, .partNumber = "CH-2U-0815", .serialNumber = "SN-4711"};
    chassis.customFields = Filling(3 + 11 + 8, isSmall ? 32 : area);
    FruImage::BOARD_VALUES board{.minutes = 0xF1295F,
                                 .manufacturer = "Acme Servers",
                                 .productName = "Twin Socket Board",
                                 .serialNumber = "BSN000123456",
                                 .partNumber = "A12345-678",
                                 .fileId = "board.fru"};
    board.customFields = Filling(6 + 13 + 18 + 13 + 11 + 10, isSmall ? 96 : area);
    FruImage::PRODUCT_VALUES product{.manufacturer = "Acme Servers",
                                     .productName = "Rack Server 2U",
                                     .partNumber = "RS2U-12",
                                     .version = "1.02",
                                     .serialNumber = "PSN000123456",
                                     .assetTag = "AT-0000000000",
                                     .fileId = "product.fru"};
    product.customFields = Filling(3 + 13 + 15 + 8 + 5 + 13 + 14 + 12, isSmall ? 120 : area);
    FruImage::CImageBuilder builder;
    if (!isSmall)
        builder.InternalUse(BYTES(internalUse - 1, 0x5A));
    BYTES image = builder.Chassis(chassis).Board(board).Product(product).Build();
    if (image.size() != size)
        std::abort();
    return image;
}

std::size_t AreaStart(const BYTES& image, unsigned int area) {
    return image[area] * std::size_t{8};
}

BYTES InfoArea(const BYTES& image, unsigned int area) {
    const auto start = image.begin() + static_cast<std::ptrdiff_t>(AreaStart(image, area));
    return BYTES(start, start + start[1] * 8);
}

BYTES MultiRecords() {
    const BYTES image =
        FruImage::CImageBuilder().MultiRecord(0x00, BYTES(24, 0x11)).MultiRecord(0xC0, BYTES(200, 0x22)).Build();
    return BYTES(image.begin() + static_cast<std::ptrdiff_t>(AreaStart(image, 5)), image.end());
}

void Check(EFI_STATUS status, const char* what) {
    if (status == FRU_STATUS_SUCCESS)
        return;
    std::fprintf(stderr, "bench: %s: 0x%08X\n", what, status);
    std::exit(1);
}

CHost::CHost(FRONT front) : m_front(front) {
    std::string name = (std::filesystem::temp_directory_path() / "frudata-XXXXXX").string();
    m_path = mkdtemp(name.data());
    std::filesystem::current_path(m_path);
    std::filesystem::create_directory_symlink(FRUDATA_TEXTS "/enus", "enus");
    SetCurrentKcs(m_front == FRONT::KCS ? &m_kcs : nullptr);
    SetCurrentBmc(m_front == FRONT::KCS ? nullptr : &m_bmc);
    Restart();
}

CHost::~CHost() {
    m_table->DeInitialize(m_table);
    SetCurrentKcs(nullptr);
    SetCurrentBmc(nullptr);
    std::filesystem::current_path(m_before);
    std::filesystem::remove_all(m_path);
}

void CHost::Restart() {
    m_table->DeInitialize(m_table);
    Check(m_table->Initialize(m_table, 0), "Initialize");
}

void CHost::FillDevice(std::size_t size) {
    m_bmc.AddFruDevice(0, FruImage(size));
}

void CHost::LoadDevice() {
    Check(m_table->LoadFruAtAddress(m_table, FRU_TYPE_IMBDEVICE, 0, 0x20, 0xFF, 0x20, 0, 0xFF, 0), "LoadFruAtAddress");
}

void CHost::WriteTextFile(std::size_t size, const std::wstring& name) {
    FillDevice(size);
    LoadDevice();
    unsigned int locators = 0;
    unsigned int frus = 0;
    Check(m_table->SelectList(m_table, FRU_LIST_SYSTEM), "SelectList");
    Check(m_table->GetNumberOfFrus(m_table, locators, frus), "GetNumberOfFrus");
    Check(m_table->SelectFru(m_table, frus - 1), "SelectFru");
    Check(m_table->SaveConfigurationToFile(m_table, name.c_str(), nullptr), "SaveConfigurationToFile");
}

void CHost::LoadText(std::size_t size) {
    std::wstring& name = m_textFiles[size];
    if (name.empty())
        WriteTextFile(size, name = std::to_wstring(size) + L".fru");
    Check(m_table->LoadConfigurationFromFile(m_table, name.c_str(), nullptr), "LoadConfigurationFromFile");
}

void CHost::WriteDigits() const {
    static constexpr const char* TAGS[] = {"", "_SEE_INTERNAL", "_SEE_CHASSIS", "_SEE_BOARD", "_SEE_PRODUCT"};
    std::ifstream saved("2048.fru");
    std::ofstream file("digits.fru");
    for (std::string line; std::getline(saved, line) && line != TAGS[1];)
        file << line << '\n';
    const BYTES image = FruImage(LARGEST_FRU);
    for (unsigned int area = 1; area <= 4; ++area) {
        const std::size_t start = AreaStart(image, area);
        // An info area goes without its checksum.
        const std::size_t end = area == 1 ? AreaStart(image, 2) : start + image[start + 1] * 8U - 1;
        file << TAGS[area];
        for (std::size_t index = start; index < end; ++index) {
            char digits[4];
            std::snprintf(digits, sizeof digits, "%c%02X", (index - start) % 16 == 0 ? '\n' : ' ', image[index]);
            file << digits;
        }
        file << '\n';
    }
    file << ")\n";
}

void CHost::LoadDigits() {
    if (!std::filesystem::exists("digits.fru"))
        WriteDigits();
    Check(m_table->LoadConfigurationFromFile(m_table, L"digits.fru", nullptr), "LoadConfigurationFromFile");
}

void CHost::SaveText() {
    Check(m_table->SaveConfigurationToFile(m_table, L"saved.fru", nullptr), "SaveConfigurationToFile");
}

void CHost::Select(int list, unsigned int fru) {
    Check(m_table->SelectList(m_table, list), "SelectList");
    Check(m_table->SelectFru(m_table, fru), "SelectFru");
    Check(m_table->SelectAreaEnum(m_table, FRU_AREA_PRODUCT), "SelectAreaEnum");
}

void CHost::SelectAssetTag() {
    Check(m_table->SelectFieldEnum(m_table, FRU_FIELD_PRODUCT_ASSET_TAG), "SelectFieldEnum");
}

void CHost::SetAssetTag() {
    Check(m_table->SetFieldDataValue(m_table, reinterpret_cast<const UINT8*>(ASSET_TAG), sizeof ASSET_TAG - 1),
          "SetFieldDataValue");
}

std::size_t CHost::ReadAllFields() {
    std::size_t characters = 0;
    unsigned int areas = 0;
    Check(m_table->GetNumberOfAreas(m_table, areas), "GetNumberOfAreas");
    for (unsigned int area = 0; area < areas; ++area) {
        unsigned int fields = 0;
        Check(m_table->SelectAreaInteger(m_table, area), "SelectAreaInteger");
        Check(m_table->GetNumberOfFields(m_table, fields), "GetNumberOfFields");
        for (unsigned int field = 0; field < fields; ++field) {
            const WCHAR* value = nullptr;
            Check(m_table->SelectFieldInteger(m_table, field), "SelectFieldInteger");
            Check(m_table->GetFieldStringValue(m_table, value), "GetFieldStringValue");
            characters += std::wcslen(value);
        }
    }
    return characters;
}

void CHost::FillRepository(unsigned int records) {
    m_bmc.Sdrs().Clear();
    for (unsigned int record = 0; record < records; ++record) {
        const auto number = static_cast<UINT8>(record / 4);
        m_bmc.AddSdr(record % 4 == 0 ? LogicalFruRecord(BMC_ADDRESS, 0, number, "Inventory")
                                     : FullSensorRecord(number, "Temperature"));
    }
}

void CHost::Scan() {
    OrderedList<FRU_LOCATOR*> locators;
    OrderedList<FRU_LOCATOR*>* list = &locators;
    Check(ScanSystemForFruLocators(list), "ScanSystemForFruLocators");
    while (FRU_LOCATOR* const first = locators.First())
        const std::unique_ptr<FRU_LOCATOR> locator(locators.Remove(first));
}

void CHost::Commit() {
    Check(m_table->CommitConfigurationToSystem(m_table), "CommitConfigurationToSystem");
}

} // namespace Frudata_Bench

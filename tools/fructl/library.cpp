#include "tools/fructl/library.h"

#include "tools/fructl/imbseam.h"
#include "tools/fructl/languages.h"
#include "tools/fructl/settings.h"
#include "tools/fructl/titles.h"

#include "frudata/debug.h"
#include "sim/simulatedbmc.h"

#include <fmt/format.h>

#include <bit>
#include <clocale>
#include <cstdlib>
#include <filesystem>

namespace Fructl {

namespace {

namespace fs = std::filesystem;

std::wstring Wide(const std::string& text, const std::string& what) {
    std::wstring wide(text.size() + 1, L'\0');
    const std::size_t length = std::mbstowcs(wide.data(), text.c_str(), wide.size());
    if (length == static_cast<std::size_t>(-1))
        throw CToolError(EXIT_REFUSED, what, "the name is not UTF-8");
    wide.resize(length);
    return wide;
}

/// Failures for which the library has no message.
std::string StatusText(EFI_STATUS status) {
    switch (status) {
    case FRU_STATUS_READ_FRU_ERROR:
        return "the device cannot be read";
    case FRU_STATUS_WRITE_FRU_ERROR:
        return "the device cannot be written";
    case FRU_STATUS_INVALID_PRODUCT_AREA:
        return "the product info area is not valid";
    default:
        break;
    }
    // Device operations also return the small numbers of the transport.
    if (status < 0xC0000000U || status > 0xFFFF0000U)
        return TransportText(static_cast<int>(status));
    return fmt::format("the library failed with status {:08X}h", status);
}

std::unique_ptr<Frudata_Sim::CSimulatedBmc> OneDevice(BYTES image) {
    auto bmc = std::make_unique<Frudata_Sim::CSimulatedBmc>();
    bmc->AddFruDevice(0, std::move(image));
    return bmc;
}

unsigned int IgnoreProgress(PROGRESS_CALLBACK_TYPE, const WCHAR*, unsigned int, unsigned int) {
    return 0;
}

} // namespace

std::string Utf8(const WCHAR* text) {
    std::string narrow;
    for (; text && *text; ++text) {
        const auto character = std::bit_cast<UINT32>(*text);
        if (character < 0x80)
            narrow += static_cast<char>(character);
        else if (character < 0x800)
            narrow += {static_cast<char>(0xC0 | (character >> 6)), static_cast<char>(0x80 | (character & 0x3F))};
        else
            narrow +=
                {static_cast<char>(0xE0 | ((character >> 12) & 0x0F)),
                 static_cast<char>(0x80 | ((character >> 6) & 0x3F)), static_cast<char>(0x80 | (character & 0x3F))};
    }
    return narrow;
}

CLibrary::CLibrary(BMC bmc)
    // A BMC without devices keeps the start-up from searching the machine's memory and ports.
    : m_bmc(bmc == NO_BMC ? std::make_unique<Frudata_Sim::CSimulatedBmc>() : CBmc::Configured()),
      m_table(GetFruDataInterface()) {
    Start();
    if (bmc == SYSTEM_BMC)
        m_bmc.Check();
}

CLibrary::CLibrary(BYTES image) : m_bmc(OneDevice(std::move(image))), m_table(GetFruDataInterface()) {
    Start();
}

CLibrary::~CLibrary() {
    m_table->DeInitialize(m_table);
}

void CLibrary::Start() {
    // File names are UTF-8 here: the user's locale decides only the language.
    std::setlocale(LC_CTYPE, "C.UTF-8");
    Check(m_table->Initialize(nullptr, Settings().platform), EXIT_DEVICE, "library");
    LoadTexts();
    m_table->SetProgressCallback(m_table, IgnoreProgress);
}

/// Opens the table from its own directory, whose name may have any characters.
void CLibrary::LoadTexts() const {
    std::error_code failed;
    const fs::path before = fs::current_path(failed);
    const fs::path directory = DataDirectory();
    if (!directory.empty())
        fs::current_path(directory, failed);
    const std::string& name = Settings().language;
    const std::wstring language(name.begin(), name.begin() + 2);
    const std::wstring country(name.begin() + 3, name.end());
    SetLibDebugLevel(0);
    // Without texts the titles are empty; their users say so.
    if (!directory.empty() && !failed)
        m_table->SetLanguageLocale(m_table, language.c_str(), country.c_str());
    fs::current_path(before, failed);
    SetLibDebugLevel(Settings().debugLevel);
}

void CLibrary::Check(EFI_STATUS status, EXIT_STATUS exitStatus, const std::string& what) const {
    if (status == FRU_STATUS_SUCCESS)
        return;
    // Without an answer nothing is known about the device's contents, whatever the library's status.
    if (IsAnswerLost() && !CurrentWay().Failure().empty())
        throw CToolError(EXIT_DEVICE, what, "no answer: " + CurrentWay().Failure());
    const WCHAR* message = nullptr;
    m_table->GetLastErrorMessage(m_table, message);
    throw CToolError(exitStatus, what, message ? Utf8(message) : StatusText(status));
}

EFI_STATUS CLibrary::Load(const ADDRESS& address) const {
    return m_table->LoadFruAtAddress(m_table, address.type, address.lun, address.deviceAddress, address.bus,
                                     address.controller, address.deviceId, address.mbmcSizeData,
                                     address.mbmcSizeAddress);
}

void CLibrary::LoadFile(const std::string& path) const {
    Check(m_table->LoadConfigurationFromFile(m_table, Wide(path, path).c_str(), nullptr), EXIT_REFUSED, path);
}

void CLibrary::SelectDevice() const {
    Check(m_table->SelectList(m_table, FRU_LIST_SYSTEM), EXIT_DEVICE, "FRU");
    Check(m_table->SelectFru(m_table, 0), EXIT_DEVICE, "FRU");
}

BYTES CLibrary::Image() const {
    return m_bmc.Simulated()->FruBytes(0);
}

} // namespace Fructl

// The operations on the library's life, on whole configurations and on texts.
#include "common/stringresource.h"
#include "fuzz/tablemodel.h"

#include <cwchar>

namespace Frudata_Fuzz {

using namespace Frudata_Private;

namespace {

/// What EmptyLibrary starts with, while a host has replaced it.
bool g_isReplaced = false;
std::unique_ptr<CStringResource> g_firstTexts;

/// Makes the host's texts, and keeps the first ones from being freed: to read them anew would take most of a run's
/// time.
void ReplaceTexts(HOST& host) {
    if (host.strings.empty())
        host.strings = StringTable(139, host.text);
    SetTextsFile(host.strings);
    g_isReplaced = true;
    if (!g_firstTexts)
        g_firstTexts = std::move(g_pStringResource);
}

/// After a call that was to replace texts and did not.
void BringBackTexts() {
    if (!g_pStringResource)
        g_pStringResource = std::move(g_firstTexts);
}

constexpr const WCHAR* FILE_NAMES[] = {INPUT_PATH, INPUT_PATH, OUTPUT_PATH, L"fuzz:none", L"fuzz:\u00E9\u4E2D", L""};

/// A status of this layer, or one of the transport's own.
bool IsDeviceStatus(EFI_STATUS status, std::initializer_list<EFI_STATUS> allowed) {
    return std::find(allowed.begin(), allowed.end(), status) != allowed.end() || status <= 0xFF ||
           status >= static_cast<EFI_STATUS>(-600);
}

EFI_STATUS LoadFuzzedTexts(TABLE* This, const WCHAR*, const WCHAR*) {
    return GetFruDataInterface()->SetLanguageLocale(This, L"fuzz:", L"texts");
}

EFI_STATUS LoadNoTexts(TABLE*, const WCHAR*, const WCHAR*) {
    return FRU_STATUS_STRING_RESOURCE_ERROR;
}

ANSWER Start(HOST& host) {
    TABLE own = *host.table;
    const UINT8 control = host.input.Byte();
    own.SetLanguageLocale = control & 4 ? LoadNoTexts : LoadFuzzedTexts;
    ReplaceTexts(host);
    const EFI_STATUS status = Initialize(control & 8 ? nullptr : &own, control & 3);
    BringBackTexts();
    host.cursor = {.start = status == 0 ? CURSOR::UP : CURSOR::FAILED, .hasCallback = false};
    return {status, status == 0 || (status == FRU_STATUS_INIT_FAILED && !(control & 8))};
}

ANSWER End(HOST& host) {
    ReplaceTexts(host);
    const EFI_STATUS status = host.Call(&TABLE::DeInitialize);
    if (host.cursor.start == CURSOR::FAILED)
        return {status, status == FRU_STATUS_NOT_INITIALIZED};
    host.cursor = {.start = CURSOR::DOWN};
    return {status, status == 0};
}

ANSWER LoadSystem(HOST& host) {
    CURSOR& cursor = host.cursor;
    // A host sets a callback first.
    if (host.IsReady() && !cursor.hasCallback)
        return {0, true};
    const EFI_STATUS status = host.Call(&TABLE::LoadConfigurationFromSystem);
    if (!host.IsReady())
        return {status, true};
    const unsigned int before = std::exchange(cursor.frus[FRU_LIST_SYSTEM], g_FruData->m_pSystemList->Count());
    cursor.isLoaded = true;
    ++host.loads;
    return {status, status == 0 && cursor.frus[FRU_LIST_SYSTEM] - before <= 1};
}

ANSWER LoadFile(HOST& host) {
    const UINT8 number = host.input.Byte();
    const WCHAR* name = number == 0xFF ? nullptr : FILE_NAMES[number % std::size(FILE_NAMES)];
    const EFI_STATUS status = host.Call(&TABLE::LoadConfigurationFromFile, name, nullptr);
    if (host.IsReady() && status == 0) {
        host.cursor.isLoaded = true;
        host.cursor.list = FRU_LIST_FILE;
        host.cursor.SelectFru(host.cursor.frus[FRU_LIST_FILE]++);
        ++host.loads;
    }
    return {status, status == 0 || status == FRU_STATUS_FILE_READ_ERROR};
}

ANSWER LoadDevice(HOST& host) {
    const FRU_PLACE place = NextPlace(host.input);
    const EFI_STATUS status = host.Call(&TABLE::LoadFruAtAddress, place.type, place.lun, place.address, place.bus,
                                        place.controller, place.id, 0, 0);
    if (host.IsReady() && status == 0) {
        host.cursor.isLoaded = true;
        ++host.cursor.frus[FRU_LIST_SYSTEM];
        ++host.loads;
    }
    return {status, IsDeviceStatus(status, {FRU_STATUS_NOT_IPMI_FRU, FRU_STATUS_CHECKSUM_ERROR,
                                            FRU_STATUS_READ_FRU_ERROR, FRU_STATUS_INVALID_INTERNAL_AREA,
                                            FRU_STATUS_INVALID_PRODUCT_AREA, FRU_STATUS_INVALID_BOARD_AREA,
                                            FRU_STATUS_INVALID_CHASSIS_AREA, FRU_STATUS_INVALID_MULTIREC_AREA})};
}

ANSWER FindDevice(HOST& host) {
    const FRU_PLACE place = NextPlace(host.input);
    const EFI_STATUS status = host.Call(&TABLE::FindFruAtAddressAndChecksumHeader, place.type, place.lun, place.address,
                                        place.bus, place.controller, place.id);
    return {status,
            IsDeviceStatus(status, {FRU_STATUS_READ_FRU_ERROR, FRU_STATUS_NOT_IPMI_FRU, FRU_STATUS_CHECKSUM_ERROR})};
}

ANSWER Commit(HOST& host) {
    const EFI_STATUS status = host.Call(&TABLE::CommitConfigurationToSystem);
    if (host.cursor.list != FRU_LIST_SYSTEM || host.cursor.fru == CURSOR_NONE)
        return {status, status == FRU_STATUS_NO_SUCH_FIELD};
    return {status, status == 0 || status == FRU_STATUS_WRITE_FRU_ERROR};
}

ANSWER Save(HOST& host) {
    const UINT8 number = host.input.Byte();
    const WCHAR* name = number & 1 ? OUTPUT_PATH : FILE_NAMES[number / 2 % std::size(FILE_NAMES)];
    const EFI_STATUS status = host.Call(&TABLE::SaveConfigurationToFile, name, number == 0xFE ? L"" : nullptr);
    if (std::wcscmp(name, OUTPUT_PATH) != 0)
        return {status, status == FRU_STATUS_FILE_CREATE_ERROR};
    return {status, status == 0 || status == FRU_STATUS_FILE_WRITE_ERROR};
}

ANSWER LastError(HOST& host) {
    const WCHAR *message = L"", *second = L"";
    const EFI_STATUS status = host.Call(&TABLE::GetLastErrorMessage, message);
    Read(message);
    if (!host.IsReady())
        return {status, !message};
    const bool isText = !message || (*message && std::wcslen(message) < 512);
    const bool isCleared = host.Call(&TABLE::GetLastErrorMessage, second) == 0 && !second;
    return {status, status == 0 && isText && isCleared};
}

ANSWER Language(HOST& host) {
    static constexpr const WCHAR* LANGUAGES[][2] = {
        {L"fuzz:", L"texts"}, {L"fuzz:", L"texts"}, {L"fuzz:", L"none"}, {nullptr, L"us"}, {L"en", nullptr}};
    const std::size_t number = host.input.Byte() % std::size(LANGUAGES);
    const bool isFuzzed = number < 2;
    if (isFuzzed)
        ReplaceTexts(host);
    const CStringResource* const before = g_pStringResource.get();
    const EFI_STATUS status = host.Call(&TABLE::SetLanguageLocale, LANGUAGES[number][0], LANGUAGES[number][1]);
    if (isFuzzed)
        BringBackTexts();
    Require(isFuzzed || (status != 0 && g_pStringResource.get() == before));
    return {status, status == 0 || status == FRU_STATUS_STRING_RESOURCE_ERROR};
}

ANSWER IsModified(HOST& host) {
    bool isModified = true;
    const EFI_STATUS status = host.Call(&TABLE::IsModified, isModified);
    return {status, status == 0 && !isModified};
}

ANSWER Callback(HOST& host) {
    const bool isSet = host.input.Byte() % 4 != 0;
    const EFI_STATUS status = host.Call(&TABLE::SetProgressCallback, isSet ? Progress : nullptr);
    if (host.IsReady())
        host.cursor.hasCallback = isSet;
    return {status, status == 0};
}

template <auto OPERATION> ANSWER Number(HOST& host) {
    const EFI_STATUS status = host.Call(OPERATION, host.input.Byte());
    return {status, status == 0};
}

ANSWER DisplayCallback(HOST& host) {
    return {host.Call(&TABLE::SetDisplayCallback, nullptr), true};
}

ANSWER Password(HOST& host) {
    BYTES password = host.input.Take(host.input.Byte() % 17);
    password.push_back(0);
    const EFI_STATUS status = host.Call(&TABLE::SetPwd, password.data(), 99);
    return {status, status == 0};
}

ANSWER AddFru(HOST& host) {
    return {host.Call(&TABLE::AddFruToSystemList), false};
}

} // namespace

void HOST::Restore() {
    if (!std::exchange(g_isReplaced, false))
        return;
    Require(Initialize(nullptr, FRU_PLATFORM_MBMC) == 0);
    if (g_firstTexts)
        g_pStringResource = std::move(g_firstTexts);
}

std::span<const ROW> WholeRows() {
    // A commit that fails has written some areas, which are no longer modified then.
    static constexpr ROW ROWS[] = {{0, NEEDS_NOTHING, Start, true, true},
                                   {1, NEEDS_NOTHING, End, true},
                                   {2, NEEDS_START, LoadSystem, true},
                                   {3, NEEDS_START, LoadFile, true},
                                   {4, NEEDS_LOAD, Commit, true, true},
                                   {5, NEEDS_FRU, Save},
                                   {6, NEEDS_START, Flag<&TABLE::IsLoaded>},
                                   {7, NEEDS_LOAD, IsModified},
                                   {8, NEEDS_START, LastError},
                                   {9, NEEDS_NOTHING, Language},
                                   {10, NEEDS_START, Callback},
                                   {11, NEEDS_START, Number<&TABLE::SetProgressCallbackInterval>},
                                   {12, NEEDS_START, Number<&TABLE::SetDebugLevel>},
                                   {13, NEEDS_NOTHING, DisplayCallback},
                                   {14, NEEDS_START, LoadDevice, true},
                                   {38, NEEDS_NOTHING, AddFru},
                                   {46, NEEDS_NOTHING, Password},
                                   {48, NEEDS_START, FindDevice}};
    return ROWS;
}

} // namespace Frudata_Fuzz

// The operations on the library's life, on whole configurations and on texts; and the row of each of the 50.
#include "common/stringresource.h"
#include "fuzz/tablemodel.h"

#include <cstdio>
#include <cwchar>

namespace Frudata_Fuzz {

using namespace Frudata_Private;

namespace {

/// What EmptyLibrary starts with, while a host has replaced it.
bool g_isReplaced = false;
std::unique_ptr<CStringResource> g_firstTexts;

/// Keeps the first texts from being freed: to read them anew would take most of a run's time.
void KeepTexts() {
    g_isReplaced = true;
    if (!g_firstTexts)
        g_firstTexts = std::move(g_pStringResource);
}

/// After a call that was to replace texts and did not.
void BringBackTexts() {
    if (!g_pStringResource)
        g_pStringResource = std::move(g_firstTexts);
}

/// The discovery must find a driver, or it looks for the ports.
EFI_STATUS Initialize(_EFI_FRU_INTERFACE* This, int platform) {
    CInput noFaults(nullptr, 0);
    Frudata_Sim::CSimulatedBmc* const before = Frudata_Sim::CurrentBmc();
    EFI_STATUS status = 0;
    {
        const CFaultyBmc bmc(noFaults);
        status = GetFruDataInterface()->Initialize(This, platform);
    }
    Frudata_Sim::SetCurrentBmc(before);
    return status;
}

constexpr UINT8 STRINGS = 139;

/// A string table in which every text is `text`.
BYTES StringTable(const BYTES& text) {
    BYTES table(4 + 8 * STRINGS + 2 * text.size() + 4);
    const auto put = [&table](std::size_t offset, std::size_t value) {
        table[offset] = static_cast<UINT8>(value);
        table[offset + 1] = static_cast<UINT8>(value >> 8);
    };
    put(0, STRINGS);
    for (std::size_t word = 0; word < STRINGS; ++word) {
        put(4 + 4 * word, 4 + 8 * STRINGS);
        put(4 + 4 * (word + STRINGS), text.size() + 1);
    }
    for (std::size_t index = 0; index < text.size(); ++index)
        table[4 + 8 * STRINGS + 2 * index] = text[index];
    std::size_t sum = 0;
    for (std::size_t index = 0; index < table.size(); index += 2)
        sum += table[index] + table[index + 1] * 256U;
    put(table.size() - 2, 0 - sum);
    return table;
}

constexpr const WCHAR* FILE_NAMES[] = {INPUT_PATH, INPUT_PATH, OUTPUT_PATH, L"fuzz:none", L"fuzz:\u00E9\u4E2D", L""};

/// A status of this layer, or one of the transport's own.
bool IsDeviceStatus(EFI_STATUS status, std::initializer_list<EFI_STATUS> allowed) {
    for (const EFI_STATUS one : allowed) {
        if (status == one)
            return true;
    }
    return status <= 0xFF || status >= static_cast<EFI_STATUS>(-600);
}

void Read(const WCHAR* text) {
    Require(!text || std::wcslen(text) < 10000);
}

unsigned int Progress(PROGRESS_CALLBACK_TYPE, const WCHAR* message, unsigned int, unsigned int) {
    Read(message);
    return 0;
}

EFI_STATUS LoadFuzzedTexts(_EFI_FRU_INTERFACE* This, const WCHAR*, const WCHAR*) {
    return GetFruDataInterface()->SetLanguageLocale(This, L"fuzz:", L"texts");
}

EFI_STATUS LoadNoTexts(_EFI_FRU_INTERFACE*, const WCHAR*, const WCHAR*) {
    return FRU_STATUS_STRING_RESOURCE_ERROR;
}

} // namespace

void CHost::Restore() {
    if (!std::exchange(g_isReplaced, false))
        return;
    Require(Initialize(nullptr, FRU_PLATFORM_MBMC) == 0);
    if (g_firstTexts)
        g_pStringResource = std::move(g_firstTexts);
}

void CHost::MakeTexts() {
    if (m_strings.empty())
        m_strings = StringTable(m_text);
    SetTextsFile(m_strings);
}

FRU_PLACE CHost::NextPlace() {
    const UINT8 number = m_input.Byte();
    FRU_PLACE place = PLACES[number % std::size(PLACES)];
    if (number & 0x80)
        place = {static_cast<FRU_TYPE>(number & 7), m_input.Byte(), m_input.Byte(), m_input.Byte(), m_input.Byte(), 1};
    return place;
}

ANSWER CHost::Start() {
    _EFI_FRU_INTERFACE own = *m_table;
    const UINT8 control = m_input.Byte();
    own.SetLanguageLocale = control & 4 ? LoadNoTexts : LoadFuzzedTexts;
    MakeTexts();
    KeepTexts();
    const EFI_STATUS status = Initialize(control & 8 ? nullptr : &own, control & 3);
    BringBackTexts();
    m_cursor = {.start = status == 0 ? CURSOR::UP : CURSOR::FAILED, .hasCallback = false};
    return {status, status == 0 || (status == FRU_STATUS_INIT_FAILED && !(control & 8))};
}

ANSWER CHost::End() {
    KeepTexts();
    const EFI_STATUS status = m_table->DeInitialize(m_table);
    if (m_cursor.start == CURSOR::FAILED)
        return {status, status == FRU_STATUS_NOT_INITIALIZED};
    m_cursor = {.start = CURSOR::DOWN};
    return {status, status == 0};
}

ANSWER CHost::LoadSystem() {
    // A host sets a callback first.
    if (IsReady() && !m_cursor.hasCallback)
        return {0, true};
    const EFI_STATUS status = m_table->LoadConfigurationFromSystem(m_table);
    if (!IsReady())
        return {status, true};
    const unsigned int frus = g_FruData->m_pSystemList->Count();
    const bool isOne = frus - m_cursor.frus[FRU_LIST_SYSTEM] <= 1;
    m_cursor.frus[FRU_LIST_SYSTEM] = frus;
    m_cursor.isLoaded = true;
    ++m_loads;
    return {status, status == 0 && isOne};
}

ANSWER CHost::LoadFile() {
    const UINT8 number = m_input.Byte();
    const WCHAR* name = number == 0xFF ? nullptr : FILE_NAMES[number % std::size(FILE_NAMES)];
    const EFI_STATUS status = m_table->LoadConfigurationFromFile(m_table, name, nullptr);
    if (IsReady() && status == 0) {
        m_cursor.ClearFru();
        m_cursor.isLoaded = true;
        m_cursor.list = FRU_LIST_FILE;
        m_cursor.fru = m_cursor.frus[FRU_LIST_FILE]++;
        ++m_loads;
    }
    return {status, status == 0 || status == FRU_STATUS_FILE_READ_ERROR};
}

ANSWER CHost::LoadDevice() {
    const FRU_PLACE place = NextPlace();
    const EFI_STATUS status = m_table->LoadFruAtAddress(m_table, place.type, place.lun, place.address, place.bus,
                                                        place.controller, place.id, 0, 0);
    if (IsReady() && status == 0) {
        m_cursor.isLoaded = true;
        ++m_cursor.frus[FRU_LIST_SYSTEM];
        ++m_loads;
    }
    return {status, IsDeviceStatus(status, {FRU_STATUS_NOT_IPMI_FRU, FRU_STATUS_CHECKSUM_ERROR,
                                            FRU_STATUS_READ_FRU_ERROR, FRU_STATUS_INVALID_INTERNAL_AREA,
                                            FRU_STATUS_INVALID_PRODUCT_AREA, FRU_STATUS_INVALID_BOARD_AREA,
                                            FRU_STATUS_INVALID_CHASSIS_AREA, FRU_STATUS_INVALID_MULTIREC_AREA})};
}

ANSWER CHost::FindDevice() {
    const FRU_PLACE place = NextPlace();
    const EFI_STATUS status = m_table->FindFruAtAddressAndChecksumHeader(m_table, place.type, place.lun, place.address,
                                                                         place.bus, place.controller, place.id);
    return {status,
            IsDeviceStatus(status, {FRU_STATUS_READ_FRU_ERROR, FRU_STATUS_NOT_IPMI_FRU, FRU_STATUS_CHECKSUM_ERROR})};
}

ANSWER CHost::Commit() {
    const EFI_STATUS status = m_table->CommitConfigurationToSystem(m_table);
    if (m_cursor.list != FRU_LIST_SYSTEM || m_cursor.fru == CURSOR_NONE)
        return {status, status == FRU_STATUS_NO_SUCH_FIELD};
    return {status, status == 0 || status == FRU_STATUS_WRITE_FRU_ERROR};
}

ANSWER CHost::Save() {
    const UINT8 number = m_input.Byte();
    const WCHAR* name = number & 1 ? OUTPUT_PATH : FILE_NAMES[number / 2 % std::size(FILE_NAMES)];
    const EFI_STATUS status = m_table->SaveConfigurationToFile(m_table, name, number == 0xFE ? L"" : nullptr);
    const bool isCreated = std::wcscmp(name, OUTPUT_PATH) == 0;
    return {status,
            isCreated ? status == 0 || status == FRU_STATUS_FILE_WRITE_ERROR : status == FRU_STATUS_FILE_CREATE_ERROR};
}

ANSWER CHost::LastError() {
    const WCHAR *message = L"", *second = L"";
    const EFI_STATUS status = m_table->GetLastErrorMessage(m_table, message);
    Read(message);
    if (!IsReady())
        return {status, !message};
    const bool isText = !message || (*message && std::wcslen(message) < 512);
    const bool isCleared = m_table->GetLastErrorMessage(m_table, second) == 0 && !second;
    return {status, status == 0 && isText && isCleared};
}

ANSWER CHost::Language() {
    static constexpr struct {
        const WCHAR *language, *country;
    } LANGUAGES[] = {
        {L"fuzz:", L"texts"}, {L"fuzz:", L"texts"}, {L"fuzz:", L"none"}, {nullptr, L"us"}, {L"en", nullptr}};
    const auto& row = LANGUAGES[m_input.Byte() % std::size(LANGUAGES)];
    const bool isFuzzed = &row < &LANGUAGES[2];
    if (isFuzzed) {
        MakeTexts();
        KeepTexts();
    }
    const CStringResource* const before = g_pStringResource.get();
    const EFI_STATUS status = m_table->SetLanguageLocale(m_table, row.language, row.country);
    if (isFuzzed)
        BringBackTexts();
    Require(isFuzzed || (status != 0 && g_pStringResource.get() == before));
    return {status, status == 0 || status == FRU_STATUS_STRING_RESOURCE_ERROR};
}

ANSWER CHost::IsModified() {
    bool isModified = true;
    const EFI_STATUS status = m_table->IsModified(m_table, isModified);
    return {status, status == 0 && !isModified};
}

ANSWER CHost::Callback() {
    const bool isSet = m_input.Byte() % 4 != 0;
    const EFI_STATUS status = m_table->SetProgressCallback(m_table, isSet ? Progress : nullptr);
    if (IsReady())
        m_cursor.hasCallback = isSet;
    return {status, status == 0};
}

ANSWER CHost::Interval() {
    const EFI_STATUS status = m_table->SetProgressCallbackInterval(m_table, m_input.Byte());
    return {status, status == 0};
}

ANSWER CHost::DebugLevel() {
    const UINT8 number = m_input.Byte();
    // Lines take most of a run's time.
    const EFI_STATUS status = m_table->SetDebugLevel(m_table, number & 0xF0 ? number % 2 : number);
    return {status, status == 0};
}

ANSWER CHost::DisplayCallback() {
    return {m_table->SetDisplayCallback(m_table, nullptr), true};
}

ANSWER CHost::Password() {
    BYTES password = m_input.Take(m_input.Byte() % 17);
    password.push_back(0);
    const EFI_STATUS status = m_table->SetPwd(m_table, password.data(), 99);
    return {status, status == 0};
}

ANSWER CHost::AddFru() {
    return {m_table->AddFruToSystemList(m_table), false};
}

template <auto OPERATION> ANSWER CHost::Text() {
    const WCHAR* text = nullptr;
    const EFI_STATUS status = (m_table->*OPERATION)(m_table, text);
    Read(text);
    return {status, status == 0};
}

template <auto OPERATION> ANSWER CHost::Flag() {
    bool flag = false;
    const EFI_STATUS status = (m_table->*OPERATION)(m_table, flag);
    return {status, status == 0};
}

namespace {

using TABLE = _EFI_FRU_INTERFACE;

/// In the order of the table.
constexpr struct {
    FUZZ_NEED need;
    ANSWER (CHost::*call)();
    bool changesFrus; ///< where it succeeds, or comes as far as that
} ROWS[] = {
    {NEEDS_NOTHING, &CHost::Start, true},
    {NEEDS_NOTHING, &CHost::End, true},
    {NEEDS_START, &CHost::LoadSystem, true},
    {NEEDS_START, &CHost::LoadFile, true},
    {NEEDS_LOAD, &CHost::Commit, true},
    {NEEDS_FRU, &CHost::Save, false},
    {NEEDS_START, &CHost::Flag<&TABLE::IsLoaded>, false},
    {NEEDS_LOAD, &CHost::IsModified, false},
    {NEEDS_START, &CHost::LastError, false},
    {NEEDS_NOTHING, &CHost::Language, false},
    {NEEDS_START, &CHost::Callback, false},
    {NEEDS_START, &CHost::Interval, false},
    {NEEDS_START, &CHost::DebugLevel, false},
    {NEEDS_NOTHING, &CHost::DisplayCallback, false},
    {NEEDS_START, &CHost::LoadDevice, true},
    {NEEDS_LOAD, &CHost::SelectList, false},
    {NEEDS_LIST, &CHost::CountFrus, false},
    {NEEDS_LIST, &CHost::SelectFru, false},
    {NEEDS_LIST, &CHost::SelectFruByAddress, false},
    {NEEDS_FRU, &CHost::Text<&TABLE::GetFruName>, false},
    {NEEDS_FRU, &CHost::Address, false},
    {NEEDS_FRU, &CHost::Flag<&TABLE::HasInternalUseArea>, false},
    {NEEDS_FRU, &CHost::Flag<&TABLE::HasBoardArea>, false},
    {NEEDS_FRU, &CHost::Flag<&TABLE::HasProductArea>, false},
    {NEEDS_FRU, &CHost::Flag<&TABLE::HasChassisArea>, false},
    {NEEDS_FRU, &CHost::Flag<&TABLE::HasMultiRecordArea>, false},
    {NEEDS_FRU, &CHost::CountAreas, false},
    {NEEDS_FRU, &CHost::SelectArea, false},
    {NEEDS_FRU, &CHost::SelectAreaInteger, false},
    {NEEDS_AREA, &CHost::AreaName, false},
    {NEEDS_AREA, &CHost::CountFields, false},
    {NEEDS_AREA, &CHost::SelectField, false},
    {NEEDS_AREA, &CHost::SelectFieldInteger, false},
    {NEEDS_FIELD, &CHost::Text<&TABLE::GetFieldTitle>, false},
    {NEEDS_AREA, &CHost::Room, false},
    {NEEDS_FIELD, &CHost::Text<&TABLE::GetFieldStringValue>, false},
    {NEEDS_FIELD, &CHost::FieldData, false},
    {NEEDS_FIELD, &CHost::SetFieldData, true},
    {NEEDS_NOTHING, &CHost::AddFru, false},
    {NEEDS_START, &CHost::LoadProperties, false},
    {NEEDS_PROPERTIES, &CHost::CountProperties, false},
    {NEEDS_PROPERTIES, &CHost::SelectProperty, false},
    {NEEDS_PROPERTY, &CHost::Text<&TABLE::GetPropertyTitle>, false},
    {NEEDS_PROPERTY, &CHost::Text<&TABLE::GetPropertyValue>, false},
    {NEEDS_AREA, &CHost::AreaData, false},
    {NEEDS_AREA, &CHost::SetAreaData, true},
    {NEEDS_NOTHING, &CHost::Password, false},
    {NEEDS_AREA, &CHost::AreaSize, false},
    {NEEDS_START, &CHost::FindDevice, false},
    {NEEDS_LOAD, &CHost::AssetTagRoom, false},
};
static_assert(std::size(ROWS) == 50);

} // namespace

void CHost::CheckCursor() const {
    if (m_cursor.start != CURSOR::UP)
        return;
    const CFruData& state = *g_FruData;
    Require(state.m_fLoaded == m_cursor.isLoaded && !state.m_fModified);
    Require(state.m_fPropertiesLoaded == m_cursor.hasProperties && state.m_nProperty == m_cursor.property);
    Require(state.m_listType == m_cursor.list && state.m_nFru == m_cursor.fru);
    Require(state.m_area == m_cursor.area && state.m_nField == m_cursor.field);
    Require(state.m_pFileList->Count() == m_cursor.frus[FRU_LIST_FILE]);
    Require(state.m_pSystemList->Count() == m_cursor.frus[FRU_LIST_SYSTEM]);
}

void CHost::CallNext() {
    const auto& row = ROWS[m_input.Byte() % std::size(ROWS)];
    m_required = m_cursor.Check(row.need);
    const ANSWER answer = (this->*row.call)();
    const bool isAllowed = m_required == 0 ? answer.isAllowed : answer.status == m_required;
    if (!isAllowed)
        std::fprintf(stderr, "operation %td answers %08X, not %08X\n", &row - ROWS + 1, answer.status, m_required);
    Require(isAllowed);
    const std::uint64_t digest = DigestFrus();
    // A commit that fails has written some areas, which are no longer modified then.
    const bool mayChange = row.call == &CHost::Commit || row.call == &CHost::Start;
    Require((row.changesFrus && (answer.status == 0 || mayChange)) || digest == m_digest);
    m_digest = digest;
    CheckCursor();
}

} // namespace Frudata_Fuzz

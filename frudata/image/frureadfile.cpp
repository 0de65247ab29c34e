// Reading a FRU text file: a state machine over its lines, one row a state.
#include "common/assertion.h"
#include "common/lasterror.h"
#include "frudata/image/frutextfile.h"
#include "frudata/image/platform.h"
#include "frudata/image/textfilekeys.h"

#include <cstdlib>
#include <cstring>
#include <string_view>
#include <type_traits>

namespace Frudata_Private {

namespace {

enum READ_STATE : unsigned {
    READ_START = 0,
    READ_LF_NAME = 1,
    READ_LF_VERSION = 2,
    READ_LF_FMT_VER = 3,
    READ_IPMI_VERSION = 4,
    READ_FRU = 5,
    READ_FRU_TITLE = 6,
    READ_START_ADDR = 7,
    READ_DATA_LEN = 8,
    READ_NVS_TYPE = 9,
    READ_DEV_ID = 10,
    READ_DEV_CNTR = 11,
    READ_NVS_LUN = 12,
    READ_DEV_BUS = 13,
    READ_DEV_ADDRESS = 14,
    READ_COMMON = 15,
    READ_INTERNAL = 16,
    READ_CHASSIS = 17,
    READ_BOARD = 18,
    READ_PRODUCT = 19,
    READ_MULTIREC = 20,
    READ_CLOSE_PAREN = 21,
    READ_MBMC_SIZE_ADRS = 22,
    READ_MBMC_SIZE_DATA = 23,
    READ_DONE = 24,
    READ_FAILED = 25
};

constexpr std::int64_t BYTE_LIMIT = 0xFF;
constexpr std::int64_t WORD_LIMIT = 0xFFFF;
constexpr std::int64_t NO_LIMIT = INT64_MAX;

class CFruFileReader;

/// One state: the key it waits for, and the action.
struct READ_STEP {
    std::string_view key; ///< the line must hold it
    READ_STATE (CFruFileReader::*read)(const READ_STEP& step);
    READ_STATE next;
    STRING_ID name;                  ///< of the value or area in error messages
    STRING_ID outOfRangeName = name; ///< the same for a number that is too large
    std::int64_t limit = NO_LIMIT;   ///< largest number accepted
    bool isOptional = false;         ///< a line without the key is tried as the next state's
    bool isSilent = false;           ///< failures leave no line in the debug log
};

/// One reading of one file into one image.
class CFruFileReader {
  public:
    CFruFileReader(CFru& fru, CFile& file, const char* filename, const CTrace& trace)
        : m_fru(fru), m_file(file), m_filename(filename), m_trace(trace) {}

    /// @return READ_DONE, READ_FAILED, or the state in which the lines ran out
    READ_STATE Run();

    READ_STATE ReadOpenParen(const READ_STEP& step);
    READ_STATE ReadTitle(const READ_STEP& step);
    READ_STATE SkipValue(const READ_STEP& step);
    READ_STATE ReadType(const READ_STEP& step);
    /// Passes the quoted value to STORE, a setter of CFileHeader.
    template <auto STORE> READ_STATE ReadHeaderText(const READ_STEP& step);
    /// Passes the number to STORE(fru, number).
    template <auto STORE> READ_STATE ReadNumber(const READ_STEP& step);
    /// Passes the block to STORE(fru, data, length), which returns whether it accepts it.
    template <auto STORE> READ_STATE ReadArea(const READ_STEP& step);

  private:
    /// Moves to the next line with the key of `step` or, where `step` is optional and that comes first, of the
    /// following step; behind the last line where there is none. @return the step of the line's key
    const READ_STEP* FindNext(const READ_STEP* step);
    bool ScanNumber(const READ_STEP& step, std::int64_t& number) const;
    READ_STATE RefuseValue(const READ_STEP& step, STRING_ID name) const;
    READ_STATE NextArea(READ_STATE areaRead) const;

    CFru& m_fru;
    CFile& m_file;
    const char* m_filename;
    const CTrace& m_trace;
    UINT32 m_line = 0;
};

constexpr READ_STEP Step(const char* key, READ_STATE (CFruFileReader::*read)(const READ_STEP&), STRING_ID name,
                         READ_STATE next) {
    return {.key = key, .read = read, .next = next, .name = name};
}

constexpr READ_STEP OptionalStep(const char* key, READ_STATE (CFruFileReader::*read)(const READ_STEP&), STRING_ID name,
                                 READ_STATE next) {
    return {.key = key, .read = read, .next = next, .name = name, .isOptional = true};
}

template <auto STORE> constexpr READ_STEP TextStep(const char* key, STRING_ID name, READ_STATE next) {
    return {.key = key, .read = &CFruFileReader::ReadHeaderText<STORE>, .next = next, .name = name};
}

template <auto STORE>
constexpr READ_STEP NumberStep(const char* key, STRING_ID name, std::int64_t limit, READ_STATE next) {
    return {.key = key,
            .read = &CFruFileReader::ReadNumber<STORE>,
            .next = next,
            .name = name,
            .outOfRangeName = name,
            .limit = limit};
}

/// Compatibility: the mBMC sizes share the messages of bus and address and leave no line in the debug log.
template <auto STORE> constexpr READ_STEP MbmcStep(const char* key, std::int64_t limit, READ_STATE next) {
    READ_STEP step = NumberStep<STORE>(key, STRING_KEY_DEV_BUS, limit, next);
    step.outOfRangeName = STRING_KEY_DEV_ADDRESS;
    step.isSilent = true;
    return step;
}

template <auto STORE> constexpr READ_STEP AreaStep(const char* tag, STRING_ID name) {
    return {.key = tag, .read = &CFruFileReader::ReadArea<STORE>, .next = READ_DONE, .name = name};
}

bool StoreCommonHeader(CFru& fru, const UINT8* data, UINTN length) {
    Assert(length == CFruHeader::FRU_HEADER_LENGTH, TEXT_FILE_SOURCE, "length == 8");
    return fru.DecodeHeader(data) == FRU_STATUS_SUCCESS;
}

bool StoreInternalUse(CFru& fru, const UINT8* data, UINTN length) {
    return fru.GetInternalUseArea().SetData(data, length, false);
}

template <FRU_AREA AREA> bool StoreInfoArea(CFru& fru, const UINT8* data, UINTN length) {
    return fru.GetInfoArea(AREA)->SetData(data, length);
}

bool StoreMultiRecords(CFru& fru, const UINT8* data, UINTN length) {
    Assert(length >= MULTIRECORD_HEADER_LENGTH, TEXT_FILE_SOURCE, "length >= 5");
    fru.MultiRecords().length = static_cast<UINT16>(length);
    return fru.DecodeMultiRecArea(data) == FRU_STATUS_SUCCESS;
}

void StoreDataLength(CFru& fru, UINT32 number) {
    fru.ComputeAreaLengths(static_cast<int>(number));
}

template <auto FRU_LOCATOR::*FIELD> void StoreAddress(CFru& fru, UINT32 number) {
    auto& field = fru.GetDevLocator()->*FIELD;
    field = static_cast<std::remove_reference_t<decltype(field)>>(number);
}

// Indexed by state.
constexpr READ_STEP STEPS[] = {
    TextStep<&CFileHeader::SetLfName>(FRU_LF_NAME, STRING_KEY_LF_NAME, READ_LF_VERSION),
    TextStep<&CFileHeader::SetLfName>(FRU_LF_NAME, STRING_KEY_LF_NAME, READ_LF_VERSION),
    TextStep<&CFileHeader::SetLfVersion>(FRU_LF_VERSION, STRING_KEY_LF_VERSION, READ_LF_FMT_VER),
    TextStep<&CFileHeader::SetLfFmtVersion>(FRU_LF_FMT_VER, STRING_KEY_LF_FMT_VER, READ_IPMI_VERSION),
    TextStep<&CFileHeader::SetIpmiVersion>(FRU_IMPI_VERSION, STRING_KEY_IPMI_VERSION, READ_FRU),
    Step(FRU_FRU, &CFruFileReader::ReadOpenParen, STRING_KEY_FRU_TITLE, READ_FRU_TITLE),
    OptionalStep(FRU_FRU_TITLE, &CFruFileReader::ReadTitle, STRING_KEY_FRU_TITLE, READ_START_ADDR),
    Step(FRU_START_ADDR, &CFruFileReader::SkipValue, STRING_KEY_FRU_TITLE, READ_DATA_LEN),
    NumberStep<StoreDataLength>(FRU_DATA_LEN, STRING_KEY_DATA_LEN, WORD_LIMIT, READ_NVS_TYPE),
    OptionalStep(FRU_NVS_TYPE, &CFruFileReader::ReadType, STRING_KEY_NVS_TYPE, READ_DEV_ID),
    NumberStep<StoreAddress<&FRU_LOCATOR::deviceId>>(FRU_DEV_ID, STRING_KEY_DEV_ID, BYTE_LIMIT, READ_DEV_CNTR),
    NumberStep<StoreAddress<&FRU_LOCATOR::controller>>(FRU_DEV_CNTR, STRING_KEY_DEV_CNTR, BYTE_LIMIT, READ_NVS_LUN),
    NumberStep<StoreAddress<&FRU_LOCATOR::lun>>(FRU_NVS_LUN, STRING_KEY_NVS_LUN, BYTE_LIMIT, READ_DEV_BUS),
    NumberStep<StoreAddress<&FRU_LOCATOR::bus>>(FRU_DEV_BUS, STRING_KEY_DEV_BUS, BYTE_LIMIT, READ_DEV_ADDRESS),
    NumberStep<StoreAddress<&FRU_LOCATOR::deviceAddress>>(FRU_DEV_ADDRESS, STRING_KEY_DEV_ADDRESS, BYTE_LIMIT,
                                                          READ_COMMON),
    AreaStep<StoreCommonHeader>(FRU_COMMON, STRING_AREA_COMMON_HEADER),
    AreaStep<StoreInternalUse>(FRU_INTERNAL, STRING_AREA_INTERNAL_USE),
    AreaStep<StoreInfoArea<FRU_AREA_CHASSIS>>(FRU_CHASSIS, STRING_AREA_CHASSIS),
    AreaStep<StoreInfoArea<FRU_AREA_BOARD>>(FRU_BOARD, STRING_AREA_BOARD),
    AreaStep<StoreInfoArea<FRU_AREA_PRODUCT>>(FRU_PRODUCT, STRING_AREA_PRODUCT),
    AreaStep<StoreMultiRecords>(FRU_MULTIREC, STRING_AREA_MULTIRECORD),
    Step(FRU_CLOSE_PAREN, &CFruFileReader::SkipValue, STRING_KEY_FRU_TITLE, READ_DONE),
    MbmcStep<StoreAddress<&FRU_LOCATOR::mbmcSizeAddress>>(FRU_MBMC_SIZE_ADDRS, BYTE_LIMIT, READ_MBMC_SIZE_DATA),
    MbmcStep<StoreAddress<&FRU_LOCATOR::mbmcSizeData>>(FRU_MBMC_SIZE_DATA, NO_LIMIT, READ_DEV_BUS),
};
static_assert(std::size(STEPS) == READ_DONE);

READ_STATE CFruFileReader::Run() {
    READ_STATE state = READ_START;
    const UINT32 lines = m_file.LineCount();
    for (m_line = 0; state < READ_DONE; ++m_line) {
        const READ_STEP* step = FindNext(&STEPS[state]);
        if (m_line == lines)
            break;
        state = (this->*step->read)(*step);
    }
    return state;
}

const READ_STEP* CFruFileReader::FindNext(const READ_STEP* step) {
    const UINT32 start = m_line;
    m_line = m_file.FindLine(start, step->key);
    if (!step->isOptional)
        return step;
    const UINT32 following = m_file.FindLine(start, step[1].key);
    if (m_line <= following)
        return step;
    m_line = following;
    return step + 1;
}

READ_STATE CFruFileReader::RefuseValue(const READ_STEP& step, STRING_ID name) const {
    if (!step.isSilent)
        m_trace.Fail(L"Unexpected Error while reading file");
    RecordLastError(STRING_FILE_BAD_VALUE, GetText(name), m_filename);
    return READ_FAILED;
}

template <auto STORE> READ_STATE CFruFileReader::ReadHeaderText(const READ_STEP& step) {
    const char* text = m_file.GetDelimitedString(m_line, FRU_SINGLE_QUOTE);
    // A line without quotes is misuse: the setter asserts. A value that cannot be copied is refused.
    std::string_view ignored;
    if (!text && m_file.FindDelimitedString(m_line, FRU_SINGLE_QUOTE, ignored))
        return RefuseValue(step, step.name);
    return (m_fru.GetFileHeader().*STORE)(text) ? step.next : RefuseValue(step, step.name);
}

READ_STATE CFruFileReader::ReadOpenParen(const READ_STEP& step) {
    // Without its parenthesis the line opens nothing, and the reader looks for another.
    return m_file.LineContains(m_line, FRU_OPEN_PAREN) ? step.next : READ_FRU;
}

READ_STATE CFruFileReader::ReadTitle(const READ_STEP& step) {
    const char* title = m_file.GetDelimitedString(m_line, FRU_SINGLE_QUOTE);
    return m_fru.GetDevLocator()->SetName(title) == 0 ? step.next : RefuseValue(step, step.name);
}

READ_STATE CFruFileReader::SkipValue(const READ_STEP& step) {
    return step.next;
}

READ_STATE CFruFileReader::ReadType(const READ_STEP& step) {
    static constexpr struct {
        const char* name;
        FRU_TYPE type;
        READ_STATE next;
    } TYPES[] = {
        {FRU_NVS_TYPE_AT24CO2, FRU_TYPE_AT24CO2, READ_DEV_ID},
        {FRU_NVS_TYPE_DS1624S, FRU_TYPE_DS1624S, READ_DEV_ID},
        {FRU_NVS_TYPE_IMBDEVICE, FRU_TYPE_IMBDEVICE, READ_DEV_ID},
        {FRU_NVS_TYPE_MBMC, FRU_TYPE_MBMC_FRU, READ_MBMC_SIZE_ADRS},
    };
    const char* name = m_file.GetDelimitedString(m_line, FRU_SINGLE_QUOTE);
    for (const auto& row : TYPES) {
        if (!name || std::strcmp(name, row.name) != 0)
            continue;
        if (row.type == FRU_TYPE_MBMC_FRU && g_fdPlatform != FRU_PLATFORM_MBMC)
            break;
        m_fru.GetDevLocator()->type = row.type;
        return row.next;
    }
    return RefuseValue(step, step.name);
}

bool CFruFileReader::ScanNumber(const READ_STEP& step, std::int64_t& number) const {
    const char* line = m_file.GetLine(m_line);
    if (!std::string_view(line).starts_with(step.key))
        return false;
    const char* digits = line + step.key.size();
    char* end = nullptr;
    number = std::strtoll(digits, &end, 16);
    return end != digits;
}

template <auto STORE> READ_STATE CFruFileReader::ReadNumber(const READ_STEP& step) {
    std::int64_t number = 0;
    if (!ScanNumber(step, number))
        return RefuseValue(step, step.name);
    if (step.limit != NO_LIMIT && (number < 0 || number > step.limit))
        return RefuseValue(step, step.outOfRangeName);
    STORE(m_fru, static_cast<UINT32>(number));
    return step.next;
}

template <auto STORE> READ_STATE CFruFileReader::ReadArea(const READ_STEP& step) {
    UINT8* data = nullptr;
    UINTN length = 0;
    const EFI_STATUS status = ParseArea(step.key.data(), m_file, m_line, data, length);
    if (status != FRU_STATUS_SUCCESS) {
        m_trace.Fail(L"Area Parse Error");
        SetParseAreaErrorMessage(status, GetText(step.name), m_filename);
        return READ_FAILED;
    }
    if (!STORE(m_fru, data, length)) {
        m_trace.Fail(L"Area Parse Error");
        RecordLastError(STRING_FILE_AREA_INVALID, GetText(step.name), m_filename);
        return READ_FAILED;
    }
    return NextArea(static_cast<READ_STATE>(&step - STEPS));
}

/// The next area of the header behind `areaRead`: the areas' states are in the order of the header's bytes.
READ_STATE CFruFileReader::NextArea(READ_STATE areaRead) const {
    for (unsigned state = areaRead + 1; state <= READ_MULTIREC; ++state) {
        if (m_fru.GetFRUHeader()[state - READ_COMMON] != 0)
            return static_cast<READ_STATE>(state);
    }
    return READ_DONE;
}

} // namespace

EFI_STATUS ReadFRUFromFile(CFru& fru, const char* filename) {
    const CTrace trace = CFru::TraceOf(L"ReadFRUFromFile");
    Assert(filename != nullptr, TEXT_FILE_SOURCE, "filename");
    CFile file;
    if (!file.Open(filename)) {
        trace.Fail(L"Unexpected");
        RecordLastError(STRING_FILE_NOT_OPENED, filename);
        return FRU_STATUS_FILE_READ_ERROR;
    }
    file.StripRightFromSequence(FRU_COMMENT);
    file.Strip();
    const READ_STATE state = CFruFileReader(fru, file, filename, trace).Run();
    if (state == READ_DONE)
        return trace.Exit(FRU_STATUS_SUCCESS);
    if (state != READ_FAILED) {
        trace.Fail(L"Unexpected EOF");
        RecordLastError(STRING_FILE_UNEXPECTED_END, filename);
    }
    return trace.Fail(L"File Read Error", FRU_STATUS_FILE_READ_ERROR);
}

} // namespace Frudata_Private

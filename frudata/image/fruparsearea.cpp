// Reading one area block of a FRU text file.
#include "common/assertion.h"
#include "common/lasterror.h"
#include "frudata/image/frutextfile.h"
#include "frudata/image/textfilekeys.h"

#include <array>
#include <cstring>

namespace Frudata_Private {

namespace {

/// Kinds of characters in a hexadecimal line: below 0x10 a digit's value, to be skipped, or out of place.
constexpr UINT8 NO_DIGIT = 0x10;
constexpr UINT8 OUT_OF_PLACE = 0x20;

constexpr auto CHARACTERS = [] {
    std::array<UINT8, 256> values{};
    values.fill(OUT_OF_PLACE);
    for (const char nothing : {'#', ' ', '\t'})
        values[static_cast<UINT8>(nothing)] = NO_DIGIT;
    for (UINT8 value = 0; value < 16; ++value) {
        values[static_cast<UINT8>("0123456789ABCDEF"[value])] = value;
        values[static_cast<UINT8>("0123456789abcdef"[value])] = value;
    }
    return values;
}();

constexpr unsigned Look(const char* character) {
    return CHARACTERS[static_cast<UINT8>(*character)];
}

/// The next digit from `line` on, or the first character that is out of place.
const char* NextDigit(const char* line) {
    while (Look(line) == NO_DIGIT)
        ++line;
    return line;
}

/// A line read as hexadecimal digits.
struct HEXADECIMAL_LINE {
    const char* end; ///< the first character that is out of place, or the line's zero byte
    UINTN length;    ///< of the block and the line's bytes, even beyond the block's room
    bool isHalf;     ///< the last digit waits for its second
};

/// Collects the bytes of one block.
class CAreaBlock {
  public:
    static constexpr UINTN SIZE = 512;

    bool IsFull() const { return m_length == SIZE; }
    UINTN GetLength() const { return m_length; }
    UINT8* GetData() { return m_data; }
    void Clear();

    EFI_STATUS AddText(const char* text, UINTN length);
    /// Stores the bytes of `line` behind the block's; AddHexadecimal makes them count.
    HEXADECIMAL_LINE ReadHexadecimal(const char* line);
    EFI_STATUS AddHexadecimal(const HEXADECIMAL_LINE& line);
    /// Both digits of a byte must be on one line.
    void AssertWholeByte() const { Assert(!m_isHalf, TEXT_FILE_SOURCE, "position == FIRST"); }

  private:
    UINT8 m_data[SIZE];
    UINTN m_length;
    bool m_isHalf;
};

void CAreaBlock::Clear() {
    std::memset(m_data, 0, SIZE);
    m_length = 0;
    m_isHalf = false;
}

EFI_STATUS CAreaBlock::AddText(const char* text, UINTN length) {
    if (length > SIZE - m_length)
        return FRU_STATUS_AREA_TOO_BIG;
    std::memcpy(m_data + m_length, text, length);
    m_length += length;
    return FRU_STATUS_SUCCESS;
}

HEXADECIMAL_LINE CAreaBlock::ReadHexadecimal(const char* line) {
    UINTN length = m_length;
    for (;; ++line) {
        line = NextDigit(line);
        const unsigned high = Look(line);
        if (high == OUT_OF_PLACE)
            return {line, length, false};
        line = NextDigit(line + 1);
        const unsigned low = Look(line);
        if (low == OUT_OF_PLACE)
            return {line, length, true};
        if (length < SIZE)
            m_data[length] = static_cast<UINT8>(high << 4 | low);
        ++length;
    }
}

EFI_STATUS CAreaBlock::AddHexadecimal(const HEXADECIMAL_LINE& line) {
    AssertWholeByte();
    if (line.length > SIZE)
        return FRU_STATUS_AREA_TOO_BIG;
    m_length = line.length;
    m_isHalf = line.isHalf;
    return *line.end == 0 ? EFI_STATUS{FRU_STATUS_SUCCESS} : FRU_STATUS_UNEXPECTED_CHARACTER;
}

/// Adds one line. @return false when the line ends the block
bool AddLine(const char* text, CAreaBlock& block, EFI_STATUS& status) {
    status = FRU_STATUS_SUCCESS;
    if (*text == 0)
        return true;
    const HEXADECIMAL_LINE line = block.ReadHexadecimal(text);
    if (*line.end != 0) {
        const char* first = std::strchr(line.end, FRU_SINGLE_QUOTE);
        const char* second = first ? std::strchr(first + 1, FRU_SINGLE_QUOTE) : nullptr;
        if (second) {
            status = block.AddText(first + 1, static_cast<UINTN>(second - first - 1));
            return true;
        }
        if (std::strstr(line.end, FRU_CLOSE_PAREN) || std::strstr(line.end, FRU_AREA_TAG_PREFIX))
            return false;
    }
    status = block.AddHexadecimal(line);
    return true;
}

/// One for the whole library: areas are read one after another.
CAreaBlock g_areaBlock;

} // namespace

EFI_STATUS ParseArea(const char* tag, const CFile& file, UINTN line, UINT8*& data, UINTN& length) {
    const CTrace trace = CFru::TraceOf(L"ParseArea");
    g_areaBlock.Clear();
    if (!file.LineContains(line, tag))
        return trace.Fail(L"Missing Area Tag", FRU_STATUS_MISSING_AREA_TAG);
    EFI_STATUS status = FRU_STATUS_SUCCESS;
    const UINTN lines = file.LineCount();
    while (++line < lines && !g_areaBlock.IsFull() && AddLine(file.GetLine(line), g_areaBlock, status)) {
        if (status == FRU_STATUS_AREA_TOO_BIG)
            return trace.Fail(L"Area Too Big", status);
        if (status == FRU_STATUS_UNEXPECTED_CHARACTER)
            return trace.Fail(L"Unexpected Character", status);
    }
    g_areaBlock.AssertWholeByte();
    // A full buffer may mean truncation: the limit is SIZE - 1.
    Assert(!g_areaBlock.IsFull(), TEXT_FILE_SOURCE, "index != 512");
    data = g_areaBlock.GetData();
    length = g_areaBlock.GetLength();
    return trace.Exit(FRU_STATUS_SUCCESS);
}

void SetParseAreaErrorMessage(EFI_STATUS status, const WCHAR* areaName, const char* filename) {
    static constexpr struct {
        EFI_STATUS status;
        const WCHAR* reason;
        STRING_ID message;
    } MESSAGES[] = {
        {FRU_STATUS_MISSING_AREA_TAG, L"Missing Area Tag", STRING_FILE_MISSING_AREA_TAG},
        {FRU_STATUS_AREA_TOO_BIG, L"Area Too Big", STRING_FILE_AREA_TOO_BIG},
        {FRU_STATUS_UNEXPECTED_CHARACTER, L"Unexpected Character", STRING_FILE_UNEXPECTED_CHARACTER},
        {FRU_STATUS_SUCCESS, L"Area Parse Error", STRING_FILE_AREA_INVALID}, // every other failure
    };
    const CTrace trace = CFru::TraceOf(L"SetParseAreaErrorMessage");
    Assert(status != FRU_STATUS_SUCCESS, TEXT_FILE_SOURCE, "status");
    const auto* row = MESSAGES;
    while (row->status != FRU_STATUS_SUCCESS && row->status != status)
        ++row;
    trace.Fail(row->reason);
    RecordLastError(row->message, areaName, filename);
    trace.Exit();
}

} // namespace Frudata_Private

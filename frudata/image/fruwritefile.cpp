// Writing a FRU text file. Each section opens the file for itself and appends.
#include "common/allocate.h"
#include "common/lasterror.h"
#include "common/openfile.h"
#include "frudata/image/frutextfile.h"
#include "frudata/image/textfilekeys.h"

namespace Frudata_Private {

namespace {

SCOPED_FILE OpenSection(const CTrace& trace, const char* path, char mode) {
    SCOPED_FILE file = OpenFile(path, mode);
    if (!file) {
        trace.Fail(L"Error Writing File");
        RecordLastError(STRING_FILE_NOT_WRITTEN, path);
    }
    return file;
}

SCOPED_FILE AppendSection(const CTrace& trace, const char* path) {
    return OpenSection(trace, path, 'a');
}

/// Writes two digits and `separator`. Most of a file is these, and fprintf would be most of its cost.
void WriteByte(std::FILE* file, UINT8 byte, char separator) {
    constexpr char digits[] = "0123456789ABCDEF";
    putc_unlocked(digits[byte >> 4], file);
    putc_unlocked(digits[byte & 0x0F], file);
    putc_unlocked(separator, file);
}

void WriteQuoted(std::FILE* file, const char* key, const char* text) {
    std::fprintf(file, "%s\t%c%s%c\n", key, FRU_SINGLE_QUOTE, text, FRU_SINGLE_QUOTE);
}

void WriteVersion(std::FILE* file, const CInternalUseArea& area) {
    const UINTN length = area.GetLength();
    const UINT8* data = area.GetData();
    const int major = length >= 2 ? static_cast<signed char>(data[length - 2]) : 0;
    const int minor = length >= 1 ? static_cast<signed char>(data[length - 1]) : 0;
    // Compatibility: bytes from 0x80 on have eight digits.
    std::fprintf(file, "%s\t%c%X.%02X%c\n", FRU_LF_VERSION, FRU_SINGLE_QUOTE, static_cast<unsigned>(major),
                 static_cast<unsigned>(minor), FRU_SINGLE_QUOTE);
}

/// The title as multibyte text; empty where there is none or the locale cannot convert it: fprintf would
/// stop in the middle of the line. @return null when the allocation fails
std::unique_ptr<char[]> ToNarrowTitle(const WCHAR* title) {
    const std::size_t length = title ? std::wcstombs(nullptr, title, 0) : 0;
    const std::size_t size = length == static_cast<std::size_t>(-1) ? 1 : length + 1;
    std::unique_ptr<char[]> text = AllocateArray<char>(size);
    if (text && size > 1)
        std::wcstombs(text.get(), title, size);
    return text;
}

const char* TypeName(FRU_TYPE type) {
    switch (type) {
    case FRU_TYPE_AT24CO2:
        return FRU_NVS_TYPE_AT24CO2;
    case FRU_TYPE_DS1624S:
        return FRU_NVS_TYPE_DS1624S;
    default:
        return FRU_NVS_TYPE_IMBDEVICE;
    }
}

EFI_STATUS WriteDataToFRUFile(std::FILE* file, const UINT8* data, int typeLength) {
    const CTrace trace = CFru::TraceOf(L"WriteDataToFRUFile");
    const UINTN length = DecodeLength(static_cast<UINT8>(typeLength));
    if (typeLength == END_OF_FIELDS || length == 0)
        return trace.Exit(FRU_STATUS_SUCCESS);
    // The format has no form for binary and 6-bit packed data: they keep their type/length byte only.
    switch (typeLength & FIELD_TYPE_MASK) {
    case FRU_FIELD_TYPE_TEXT:
        std::fprintf(file, "%c%s%c\n", FRU_SINGLE_QUOTE, reinterpret_cast<const char*>(data), FRU_SINGLE_QUOTE);
        break;
    case FRU_FIELD_TYPE_BCD_PLUS:
        for (UINTN index = 0; index < length; ++index)
            WriteByte(file, data[index], ' ');
        std::fputc('\n', file);
        break;
    default:
        break;
    }
    return trace.Exit(FRU_STATUS_SUCCESS);
}

/// The header, the fields and the end marker; the reader computes padding and checksum.
EFI_STATUS SaveInfoArea(const CTrace& trace, const char* path, const char* tag, const CInfoArea& area) {
    const SCOPED_FILE file = AppendSection(trace, path);
    if (!file)
        return FRU_STATUS_FILE_WRITE_ERROR;
    const UINT8* header = area.GetHeader();
    std::fprintf(file.get(), "%s\n", tag);
    for (UINTN place = 0; place < area.GetHeaderSize(); ++place)
        // The date stands on one line.
        WriteByte(file.get(), header[place],
                  place >= HEADER_MFG_DATE_TIME && place + 1 < BOARD_HEADER_SIZE ? ' ' : '\n');
    area.ForEachField([&file](UINT8 typeLength, const UINT8* data) {
        WriteByte(file.get(), typeLength, '\n');
        if (typeLength != END_OF_FIELDS)
            WriteDataToFRUFile(file.get(), data, typeLength);
    });
    std::fprintf(file.get(), "%02X\n\n", END_OF_FIELDS);
    return trace.Exit(FRU_STATUS_SUCCESS);
}

void WriteRecord(std::FILE* file, const FRUMultiRecord& record) {
    UINT8 header[MULTIRECORD_HEADER_LENGTH];
    record.EncodeHeader(header);
    for (const UINT8 byte : header)
        WriteByte(file, byte, '\n');
    for (UINTN index = 0; index < record.length; ++index) {
        if (index > 1 && index % 16 == 0)
            std::fputs("\n ", file);
        WriteByte(file, record.data[index], ' ');
    }
    std::fputs("\n ", file);
}

EFI_STATUS SaveFRUFileHeader(CFru& fru, const char* path) {
    const CTrace trace = CFru::TraceOf(L"SaveFRUFileHeader");
    const FRU_LOCATOR& locator = fru.Locator();
    const std::unique_ptr<char[]> title = ToNarrowTitle(locator.name);
    if (!title) {
        trace.Fail(L"FRU Error Allocation");
        RecordLastError(STRING_OUT_OF_MEMORY);
        return FRU_STATUS_OUT_OF_MEMORY;
    }
    const SCOPED_FILE file = OpenSection(trace, path, 'w');
    if (!file)
        return FRU_STATUS_FILE_CREATE_ERROR;
    WriteQuoted(file.get(), FRU_LF_NAME, path);
    WriteVersion(file.get(), fru.GetInternalUseArea());
    WriteQuoted(file.get(), FRU_LF_FMT_VER, "1.50");
    WriteQuoted(file.get(), FRU_IMPI_VERSION, "1.00");
    std::fprintf(file.get(), "\n\n%s %s\n", FRU_FRU, FRU_OPEN_PAREN);
    WriteQuoted(file.get(), FRU_FRU_TITLE, title.get());
    std::fprintf(file.get(), "%s\t%s\n", FRU_START_ADDR, "0000");
    std::fprintf(file.get(), "%s\t%04X\n", FRU_DATA_LEN, fru.GetOverallLength());
    WriteQuoted(file.get(), FRU_NVS_TYPE, TypeName(locator.type));
    // Compatibility: this one line has two tabs.
    std::fprintf(file.get(), "%s\t\t%02X\n", FRU_DEV_ID, locator.deviceId);
    const struct {
        const char* key;
        UINT8 value;
    } address[] = {
        {FRU_DEV_CNTR, locator.controller},
        {FRU_NVS_LUN, locator.lun},
        {FRU_DEV_BUS, locator.bus},
        {FRU_DEV_ADDRESS, locator.deviceAddress},
    };
    for (const auto& row : address)
        std::fprintf(file.get(), "%s\t%02X\n", row.key, row.value);
    return trace.Exit(FRU_STATUS_SUCCESS);
}

EFI_STATUS SaveFRUCommonHeader(CFru& fru, const char* path) {
    const CTrace trace = CFru::TraceOf(L"SaveFRUCommonHeader");
    const SCOPED_FILE file = AppendSection(trace, path);
    if (!file)
        return FRU_STATUS_FILE_WRITE_ERROR;
    std::fprintf(file.get(), "%s\n", FRU_COMMON);
    for (UINTN place = 0; place < CFruHeader::FRU_HEADER_LENGTH; ++place) {
        std::fputc('\t', file.get());
        WriteByte(file.get(), fru.Header()[place], '\n');
    }
    std::fprintf(file.get(), "\n\n");
    return trace.Exit(FRU_STATUS_SUCCESS);
}

EFI_STATUS SaveInternalAreaToFile(CFru& fru, const char* path) {
    const CTrace trace = CFru::TraceOf(L"SaveInternalAreaToFile");
    const SCOPED_FILE file = AppendSection(trace, path);
    if (!file)
        return FRU_STATUS_FILE_WRITE_ERROR;
    const CInternalUseArea& area = fru.GetInternalUseArea();
    std::fprintf(file.get(), "%s\n", FRU_INTERNAL);
    for (UINTN index = 0; index < area.GetLength(); ++index) {
        if (index % 16 == 0)
            std::fputs("\n\t", file.get());
        WriteByte(file.get(), area.GetData()[index], ' ');
    }
    std::fprintf(file.get(), "\n\n\n");
    return trace.Exit(FRU_STATUS_SUCCESS);
}

EFI_STATUS SaveChassisAreaToFile(CFru& fru, const char* path) {
    return SaveInfoArea(CFru::TraceOf(L"SaveChassisAreaToFile"), path, FRU_CHASSIS, fru.GetChassisInfoArea());
}

EFI_STATUS SaveBoardAreaToFile(CFru& fru, const char* path) {
    return SaveInfoArea(CFru::TraceOf(L"SaveBoardAreaToFile"), path, FRU_BOARD, fru.GetBoardInfoArea());
}

EFI_STATUS SaveProductAreaToFile(CFru& fru, const char* path) {
    return SaveInfoArea(CFru::TraceOf(L"SaveProductAreaToFile"), path, FRU_PRODUCT, fru.GetProductInfoArea());
}

EFI_STATUS SaveMultiRecAreaToFile(CFru& fru, const char* path) {
    const CTrace trace = CFru::TraceOf(L"SaveMultiRecAreaToFile");
    const SCOPED_FILE file = AppendSection(trace, path);
    if (!file)
        return FRU_STATUS_FILE_WRITE_ERROR;
    std::fprintf(file.get(), "%s\n", FRU_MULTIREC);
    for (const FRUMultiRecord* record = fru.MultiRecords().first.get(); record; record = record->next.get())
        WriteRecord(file.get(), *record);
    std::fprintf(file.get(), "\n");
    return trace.Exit(FRU_STATUS_SUCCESS);
}

} // namespace

EFI_STATUS SaveFRUToFile(CFru& fru, const char* path) {
    const CTrace trace = CFru::TraceOf(L"SaveFRUToFile");
    const struct {
        bool isPresent;
        EFI_STATUS (*save)(CFru& fru, const char* path);
    } sections[] = {
        {true, SaveFRUFileHeader},
        {true, SaveFRUCommonHeader},
        {fru.Header().Has(FRU_HEADER_INTERNAL_USE), SaveInternalAreaToFile},
        {fru.Header().Has(FRU_HEADER_CHASSIS), SaveChassisAreaToFile},
        {fru.Header().Has(FRU_HEADER_BOARD), SaveBoardAreaToFile},
        {fru.Header().Has(FRU_HEADER_PRODUCT), SaveProductAreaToFile},
        {fru.Header().Has(FRU_HEADER_MULTIRECORD), SaveMultiRecAreaToFile},
    };
    for (const auto& section : sections) {
        const EFI_STATUS status = section.isPresent ? section.save(fru, path) : FRU_STATUS_SUCCESS;
        if (status != FRU_STATUS_SUCCESS)
            return status;
    }
    const SCOPED_FILE file = AppendSection(trace, path);
    if (!file)
        return FRU_STATUS_FILE_WRITE_ERROR;
    std::fprintf(file.get(), "%s\n", FRU_CLOSE_PAREN);
    return trace.Exit(FRU_STATUS_SUCCESS);
}

} // namespace Frudata_Private

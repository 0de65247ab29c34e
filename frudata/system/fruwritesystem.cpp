// Writing a FRU image back to its device.
#include "common/stringresource.h"
#include "common/textformat.h"
#include "frudata/bmclib.h"
#include "frudata/system/frudevice.h"

namespace Frudata_Private {

namespace {

constexpr std::size_t ADDRESS_TEXT_SIZE = 100;
constexpr std::size_t WRITING_TEXT_SIZE = 256;

/// Writes the areas one behind the other and reports each.
/// Compatibility: the offsets of the header do not count.
class CFruWriter {
  public:
    CFruWriter(const FRU_LOCATOR& locator, const FRU_PROGRESS_CALLBACK& progress)
        : m_locator(locator), m_progress(progress) {}

    void Report(const WCHAR* text) const {
        if (m_progress)
            m_progress(PROGRESS_CALLBACK_WRITE, text, 0, 0);
    }

    bool Write(const UINT8* data, UINTN length) {
        if (WriteFruData(m_locator, m_offset, length, data) != FRU_STATUS_SUCCESS)
            return false;
        m_offset += length;
        return true;
    }

    /// Writes `area` if `isWanted`, and moves on by its length in any case.
    template <typename AREA> bool WriteArea(AREA& area, bool isWanted, STRING_ID progress) {
        Report(GetText(progress));
        if (!isWanted) {
            m_offset += area.GetLength();
            return true;
        }
        area.ResetIsModified();
        return Write(area.GetData(), area.GetLength());
    }

    bool WriteRecord(const FRUMultiRecord& record) {
        UINT8 header[MULTIRECORD_HEADER_LENGTH];
        record.EncodeHeader(header);
        for (const UINT8& byte : header) {
            if (!Write(&byte, 1))
                return false;
        }
        return Write(record.data, record.length);
    }

  private:
    const FRU_LOCATOR& m_locator;
    const FRU_PROGRESS_CALLBACK& m_progress;
    UINT32 m_offset = 0;
};

/// Reports which FRU is being written, by its address even if it has a name.
void ReportFru(const CFruWriter& writer, const FRU_LOCATOR& locator) {
    WCHAR address[ADDRESS_TEXT_SIZE];
    WCHAR text[WRITING_TEXT_SIZE];
    FormatText(address, ADDRESS_TEXT_SIZE, STRING_FRU_IDENTIFIER, UINT32{locator.deviceId}, UINT32{locator.controller},
               UINT32{locator.deviceAddress}, UINT32{locator.bus});
    FormatText(text, WRITING_TEXT_SIZE, STRING_PROGRESS_WRITING_FRU, static_cast<const WCHAR*>(address));
    writer.Report(text);
}

bool WriteAreas(CFru& fru, const FRU_PROGRESS_CALLBACK& progress) {
    CInternalUseArea& internalUse = fru.GetInternalUseArea();
    CChassisInfoArea& chassis = fru.GetChassisInfoArea();
    CBoardInfoArea& board = fru.GetBoardInfoArea();
    CProductInfoArea& product = fru.GetProductInfoArea();
    MULTIRECORD_AREA& multiRecords = fru.MultiRecords();
    CFruWriter writer(fru.Locator(), progress);
    ReportFru(writer, fru.Locator());
    if (!writer.Write(fru.Header().GetData(), fru.Header().GetLength()))
        return false;
    // Compatibility: the board area goes out with every commit, modified or not.
    if (!writer.WriteArea(internalUse, fru.HasInternalArea() && internalUse.IsModified(),
                          STRING_PROGRESS_INTERNAL_USE) ||
        !writer.WriteArea(chassis, fru.HasChassisArea() && chassis.IsModified(), STRING_PROGRESS_CHASSIS) ||
        !writer.WriteArea(board, fru.HasBoardArea() || board.IsModified(), STRING_PROGRESS_BOARD) ||
        !writer.WriteArea(product, fru.HasProductArea() && product.IsModified(), STRING_PROGRESS_PRODUCT))
        return false;
    if (!fru.HasMultiRecArea() || !multiRecords.isModified)
        return true;
    writer.Report(GetText(STRING_PROGRESS_MULTIRECORD));
    for (const FRUMultiRecord* record = multiRecords.first.get(); record; record = record->next.get()) {
        if (!writer.WriteRecord(*record))
            return false;
    }
    multiRecords.isModified = false;
    return true;
}

} // namespace

EFI_STATUS WriteToSystem(CFru& fru, const FRU_PROGRESS_CALLBACK& progress) {
    const CTrace trace = CFru::TraceOf(L"WriteToSystem");
    GetBmcType(&g_BMCType);
    if (WriteAreas(fru, progress))
        return trace.Exit(FRU_STATUS_SUCCESS);
    trace.Fail(L"Error Writing System");
    RecordFruError(STRING_DEVICE_NOT_WRITTEN, &fru.Locator());
    return FRU_STATUS_WRITE_SYSTEM_ERROR;
}

} // namespace Frudata_Private

// Writing a FRU image back to its device.
#include "common/lasterror.h"
#include "frudata/bmclib.h"
#include "frudata/image/fru.h"
#include "frudata/system/frudevice.h"

namespace Frudata_Private {

namespace {

constexpr std::size_t ADDRESS_TEXT_SIZE = 100;
constexpr std::size_t WRITING_TEXT_SIZE = 256;

/// Writes the areas one behind the other, wherever the header has them, and reports each.
class CFruWriter {
  public:
    CFruWriter(CFru& fru, const FRU_PROGRESS_CALLBACK& progress) : m_fru(fru), m_progress(progress) {}

    void Report(const WCHAR* text) const {
        if (m_progress)
            m_progress(PROGRESS_CALLBACK_WRITE, text, 0, 0);
    }

    bool Write(const UINT8* data, UINTN length) {
        if (m_fru.WriteFruData(m_offset, length, data) != FRU_STATUS_SUCCESS)
            return false;
        m_offset += length;
        return true;
    }

    /// Writes `area` where `isWanted`; its place is kept free otherwise.
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
    CFru& m_fru;
    const FRU_PROGRESS_CALLBACK& m_progress;
    UINT32 m_offset = 0;
};

/// Tells the host which FRU is being written, by its address whatever its name.
void ReportFru(const CFruWriter& writer, const FRU_LOCATOR& locator) {
    WCHAR address[ADDRESS_TEXT_SIZE];
    WCHAR text[WRITING_TEXT_SIZE];
    FormatText(address, ADDRESS_TEXT_SIZE, STRING_FRU_IDENTIFIER, UINT32{locator.deviceId}, UINT32{locator.controller},
               UINT32{locator.deviceAddress}, UINT32{locator.bus});
    FormatText(text, WRITING_TEXT_SIZE, STRING_PROGRESS_WRITING_FRU, static_cast<const WCHAR*>(address));
    writer.Report(text);
}

} // namespace

bool CFru::WriteAreas(const FRU_PROGRESS_CALLBACK& progress) {
    CFruWriter writer(*this, progress);
    ReportFru(writer, m_locator);
    if (!writer.Write(m_header.GetData(), m_header.GetLength()))
        return false;
    // Compatibility: the board area goes out with every commit, modified or not.
    if (!writer.WriteArea(m_internalUse, HasInternalArea() && m_internalUse.IsModified(),
                          STRING_PROGRESS_INTERNAL_USE) ||
        !writer.WriteArea(m_chassis, HasChassisArea() && m_chassis.IsModified(), STRING_PROGRESS_CHASSIS) ||
        !writer.WriteArea(m_board, HasBoardArea() || m_board.IsModified(), STRING_PROGRESS_BOARD) ||
        !writer.WriteArea(m_product, HasProductArea() && m_product.IsModified(), STRING_PROGRESS_PRODUCT))
        return false;
    if (!HasMultiRecArea() || !m_multiRecModified)
        return true;
    writer.Report(GetText(STRING_PROGRESS_MULTIRECORD));
    for (const FRUMultiRecord* record = m_multiRecords.get(); record; record = record->next.get()) {
        if (!writer.WriteRecord(*record))
            return false;
    }
    m_multiRecModified = false;
    return true;
}

EFI_STATUS CFru::WriteToSystem(const FRU_PROGRESS_CALLBACK& progress) {
    const CTrace trace = TraceOf(L"WriteToSystem");
    GetBmcType(&g_BMCType);
    if (WriteAreas(progress))
        return trace.Exit(FRU_STATUS_SUCCESS);
    trace.Fail(L"Error Writing System");
    WCHAR identifier[FRU_IDENTIFIER_BYTES / sizeof(WCHAR)];
    RecordLastError(STRING_DEVICE_NOT_WRITTEN, GetFriendlyFruIdentifier(&m_locator, identifier, FRU_IDENTIFIER_BYTES));
    return FRU_STATUS_WRITE_SYSTEM_ERROR;
}

} // namespace Frudata_Private

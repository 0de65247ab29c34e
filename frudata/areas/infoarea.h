// One walk over the chassis, board and product info areas, with a description for their differences.
#pragma once

#include "common/stringid.h"
#include "frudata/areas/customfields.h"
#include "frudata/areas/fruarea.h"

#include <span>

namespace Frudata_Private {

/// One fixed field of an area.
struct INFO_AREA_FIELD {
    STRING_ID title;
    const WCHAR* setter; ///< name of its setter in the debug log
};

/// The properties of one info area.
struct INFO_AREA_DESCRIPTION {
    const WCHAR* className; ///< in the debug log
    const char* sourceFile; ///< in assertions
    FRU_FIELD firstField;   ///< selector of field 0; the others follow
    std::span<const INFO_AREA_FIELD> fields;
    STRING_ID customTitle;
    UINTN headerSize;        ///< format version, length, language or type, and the board's date/time
    UINTN headerFieldOffset; ///< place of field 0 in the header ...
    UINTN headerFieldSize;   ///< ... and its size; 0 where every field has a type/length byte
    bool headerFieldMarksModified;
    bool customFieldsMarkModified;
    bool assertsFieldSelection;          ///< a wrong selector or title index is an assertion, else a result
    bool assertsPadding;                 ///< fields that do not fit are an assertion, else a negative padding
    const char* customIndexCondition;    ///< assertion: no such custom field
    const char* customPositionCondition; ///< assertion: the custom field list ends early
    bool reportsRefusals;                ///< a refused value has a trace line and a message, else neither
    // Words of the debug log.
    const WCHAR* tooLong;             ///< a value has no room; only where refusals are reported
    const WCHAR* valueNoMemory;       ///< no memory for a fixed field's text; null: no line and no message
    const WCHAR* customValueNoMemory; ///< no memory for a custom field's text; null: no line
};

/// Places in an area's header.
enum : UINTN {
    HEADER_FORMAT_VERSION = 0,
    HEADER_LENGTH = 1,
    HEADER_LANGUAGE_OR_TYPE = 2,
    HEADER_MFG_DATE_TIME = 3 ///< of the board area alone; the others' header ends here
};
/// Bytes of the board's date and time.
constexpr UINTN MFG_DATE_TIME_SIZE = 3;
constexpr UINTN BOARD_HEADER_SIZE = HEADER_MFG_DATE_TIME + MFG_DATE_TIME_SIZE;
constexpr UINTN OTHER_HEADER_SIZE = HEADER_MFG_DATE_TIME;

/// Most fixed fields of an area.
constexpr std::size_t FIELD_CAPACITY = 7;

/// Whether an area of this description fits CInfoArea.
constexpr bool IsWithinCapacity(const INFO_AREA_DESCRIPTION& description) {
    return description.headerSize <= BOARD_HEADER_SIZE && description.fields.size() <= FIELD_CAPACITY &&
           description.headerFieldOffset + description.headerFieldSize <= description.headerSize &&
           (description.tooLong != nullptr) == description.reportsRefusals;
}

/// Largest area image, in bytes.
constexpr UINTN INFO_AREA_SIZE = 512;

/// One info area. Image: header, fixed fields, custom fields, 0xC1, zero bytes, checksum in the last byte.
/// Every change of content recomputes the checksum at once, except RemoveCustomField.
class CInfoArea : public CFruArea {
  public:
    CInfoArea(const CInfoArea&) = delete;
    CInfoArea& operator=(const CInfoArea&) = delete;

    /// Parses an image of 1 to 512 bytes: whole, or compact, ending at its 0xC1 (the checksum is computed
    /// then). A wrong checksum is a fatal assertion. @return false when it is malformed or an allocation
    /// fails; what was read before stays
    bool SetData(const UINT8* data, UINTN length);
    /// The image, GetLength() bytes, in a buffer of the area. A length of 0 is a fatal assertion.
    const UINT8* GetData() const;

    UINTN GetLength() const;
    /// @return false when `bytes` is no multiple of 8
    bool SetLength(UINTN bytes);
    /// Zero bytes between the end marker and the checksum; negative when the fields do not fit.
    int GetPadLength() const;
    UINT8 GetChecksum() const;
    void SetChecksum(UINT8 checksum);
    UINT8 UpdateChecksum();
    bool IsValid() const;
    UINT8 GetFormatVersion() const;
    bool SetFormatVersion(UINT8 version);
    bool IsModified() const;
    void ResetIsModified();

    UINTN GetNumberOfFields() const override;
    UINTN GetFieldIndexFromEnum(FRU_FIELD field) const override;
    const WCHAR* GetFieldTitleFromIndex(UINTN index) const override;
    const WCHAR* GetFieldValueFromIndex(UINTN index) override;
    /// The bytes of a field, owned by the area. Custom index 0 is the first custom field, every later one
    /// the second. @return false for a custom field that does not exist
    bool GetFieldData(UINTN index, const UINT8*& data, UINTN& length) const;
    /// Sets a field. The first custom index is the last custom field. @return false when the value is refused;
    /// nothing has changed then
    bool SetFieldData(UINTN index, const UINT8* data, UINTN length, FRU_FIELD_TYPE type);

    UINT32 GetNumberOfCustomFields() const;
    /// The display text of custom field `index` from the first; the caller owns it.
    /// @return 0, OUT_OF_MEMORY; an index that does not exist is a fatal assertion
    EFI_STATUS GetCustomField(UINTN index, std::unique_ptr<WCHAR[]>& value) const;
    /// Appends a field. Its type/length byte is not counted against the padding. @return false without room
    bool AddCustomField(const UINT8* data, UINTN length, FRU_FIELD_TYPE type);
    bool SetCustomField(UINTN index, const UINT8* data, UINTN length, FRU_FIELD_TYPE type);
    /// Removes a field; the checksum and the modified flag are the caller's. A missing one is a fatal assertion.
    bool RemoveCustomField(UINTN index);

    /// The header of the image, GetHeaderSize() bytes.
    const UINT8* GetHeader() const { return m_header; }
    UINTN GetHeaderSize() const { return m_description.headerSize; }

    /// Calls `visit(typeLength, data)` for every type/length field in image order.
    template <typename VISITOR> void ForEachField(VISITOR visit) const {
        for (UINTN index = 0; index < m_description.fields.size(); ++index) {
            if (!IsHeaderField(index))
                visit(m_fields[index].GetTypeLength(), m_fields[index].GetData());
        }
        for (const CFruCustomField* field = m_custom.GetHead(); field; field = field->m_next.get())
            visit(field->m_typeLength, field->m_data);
    }

  protected:
    explicit CInfoArea(const INFO_AREA_DESCRIPTION& description) : m_description(description) {}

    CTrace Trace(const WCHAR* operation) const { return {m_description.className, operation}; }
    bool IsHeaderField(UINTN index) const { return index == 0 && m_description.headerFieldSize > 0; }
    bool SetField(UINTN index, const UINT8* data, UINTN length, FRU_FIELD_TYPE type);
    const UINT8* GetField(const WCHAR* operation, UINTN index) const;
    UINT8 GetFieldTL(const WCHAR* operation, UINTN index) const;
    UINT8 GetHeaderByte(const WCHAR* operation, UINTN place) const;
    bool SetHeaderByte(const WCHAR* operation, UINTN place, UINT8 value);

    /// Reports a failed allocation for the text of a fixed field.
    void RefuseNoMemory(const CTrace& trace) const;
    /// Sets the field that lies in the header. `trace` is the caller's, for a failure.
    virtual bool SetHeaderField(const CTrace& trace, const UINT8* data, UINTN length) = 0;
    /// The display text of the field that lies in the header, or null.
    virtual std::unique_ptr<WCHAR[]> HeaderFieldText(const CTrace& trace) const = 0;
    /// Called when parsing finds the end marker; `end` is the place behind it.
    virtual void EndOfFieldsFound(UINTN /*end*/) const {}

    const INFO_AREA_DESCRIPTION& m_description;
    UINT8 m_header[BOARD_HEADER_SIZE] = {};
    CFruField m_fields[FIELD_CAPACITY];

  private:
    bool ParseHeader(std::span<const UINT8> image);
    bool ParseField(std::span<const UINT8> image, UINTN& index, CFruField& field);
    bool ParseCustomField(std::span<const UINT8> image, UINTN& index);
    bool ParseTail(std::span<const UINT8> image, UINTN index);
    UINT8 Sum() const;
    UINTN NumberOfFields() const { return m_custom.GetCount() + static_cast<UINTN>(m_description.fields.size()); }
    UINTN AreaLength() const { return m_header[HEADER_LENGTH] * 8U; }
    bool HasRoom(UINTN length, UINT8 typeLength) const;
    bool RefuseNull(const CTrace& trace) const;
    bool RefuseTooLong(const CTrace& trace, STRING_ID title) const;
    bool RefuseMissing(const CTrace& trace) const;

    CCustomFieldList m_custom;
    UINT8 m_checksum = 0;
    bool m_modified = false;
    std::unique_ptr<WCHAR[]> m_pValue;
    mutable UINT8 m_image[INFO_AREA_SIZE] = {};
};

} // namespace Frudata_Private

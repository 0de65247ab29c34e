// Board info area (FRU Information Storage Definition, section 11).
#pragma once

#include "frudata/areas/infoarea.h"

namespace Frudata_Private {

class CBoardInfoArea : public CInfoArea {
  public:
    static constexpr UINTN NUMBER_OF_FIELDS = 6;

    CBoardInfoArea();

    UINT8 GetLanguageCode() const { return GetHeaderByte(L"GetLanguageCode", HEADER_LANGUAGE_OR_TYPE); }
    bool SetLanguageCode(UINT8 code) { return SetHeaderByte(L"SetLanguageCode", HEADER_LANGUAGE_OR_TYPE, code); }

    /// Minutes since 1995-12-31 00:00 UTC in 3 bytes, least significant first.
    const UINT8* GetMfgDateTime() const;
    /// @return false for a null value or a length other than 3
    bool SetMfgDateTime(const UINT8* value, UINTN length);
    bool isMfgDateTimeSet() const;
    /// Stamps the board with the current time unless it has a date already.
    void updateMfgDateTime();
    /// The current time as the area stores it. @return false for a null `out`
    bool getCurTimeInMfgDateTimeFormat(UINT8* out) const;

    // By name, to complete the interface; the library reaches fields by index.

    const UINT8* GetManufacturer() const { return GetField(L"GetManufacturer", MANUFACTURER); }
    const UINT8* GetProductName() const { return GetField(L"GetProductName", PRODUCT_NAME); }
    const UINT8* GetSerialNumber() const { return GetField(L"GetSerialNumber", SERIAL_NUMBER); }
    const UINT8* GetPartNumber() const { return GetField(L"GetPartNumber", PART_NUMBER); }
    const UINT8* GetFileId() const { return GetField(L"GetFileId", FILE_ID); }
    UINT8 GetManufacturerTL() const { return GetFieldTL(L"GetManufacturerTL", MANUFACTURER); }
    UINT8 GetProductNameTL() const { return GetFieldTL(L"GetProductNameTL", PRODUCT_NAME); }
    UINT8 GetSerialNumberTL() const { return GetFieldTL(L"GetSerialNumberTL", SERIAL_NUMBER); }
    UINT8 GetPartNumberTL() const { return GetFieldTL(L"GetPartNumberTL", PART_NUMBER); }
    UINT8 GetFileIdTL() const { return GetFieldTL(L"GetFileIdTL", FILE_ID); }
    bool SetManufacturer(const UINT8* data, UINTN length, FRU_FIELD_TYPE type) {
        return SetField(MANUFACTURER, data, length, type);
    }
    bool SetProductName(const UINT8* data, UINTN length, FRU_FIELD_TYPE type) {
        return SetField(PRODUCT_NAME, data, length, type);
    }
    bool SetSerialNumber(const UINT8* data, UINTN length, FRU_FIELD_TYPE type) {
        return SetField(SERIAL_NUMBER, data, length, type);
    }
    bool SetPartNumber(const UINT8* data, UINTN length, FRU_FIELD_TYPE type) {
        return SetField(PART_NUMBER, data, length, type);
    }
    bool SetFileId(const UINT8* data, UINTN length, FRU_FIELD_TYPE type) {
        return SetField(FILE_ID, data, length, type);
    }

  protected:
    bool SetHeaderField(const CTrace& trace, const UINT8* data, UINTN length) override;
    std::unique_ptr<WCHAR[]> HeaderFieldText(const CTrace& trace) const override;

  private:
    enum : UINTN {
        MANUFACTURER = 1,
        PRODUCT_NAME,
        SERIAL_NUMBER,
        PART_NUMBER,
        FILE_ID
    };
};

} // namespace Frudata_Private

// Product info area (FRU Information Storage Definition, section 12).
#pragma once

#include "frudata/areas/infoarea.h"

namespace Frudata_Private {

/// Bytes that the asset tag may occupy after the last parse of any product area: its length and the room
/// between the end marker and the checksum. Never reset.
extern UINTN nTotalAssetTagLength;

class CProductInfoArea : public CInfoArea {
  public:
    static constexpr UINTN NUMBER_OF_FIELDS = 7;

    CProductInfoArea();

    // By name, to complete the interface; the library reaches fields by index.

    UINT8 GetLanguageCode() const { return GetHeaderByte(L"GetLanguageCode", HEADER_LANGUAGE_OR_TYPE); }
    bool SetLanguageCode(UINT8 code) { return SetHeaderByte(L"SetLanguageCode", HEADER_LANGUAGE_OR_TYPE, code); }

    const UINT8* GetManufacturerName() const { return GetField(L"GetManufacturerName", MANUFACTURER_NAME); }
    const UINT8* GetProductName() const { return GetField(L"GetProductName", PRODUCT_NAME); }
    const UINT8* GetPartNumber() const { return GetField(L"GetPartNumber", PART_NUMBER); }
    const UINT8* GetVersion() const { return GetField(L"GetVersion", VERSION); }
    const UINT8* GetSerialNumber() const { return GetField(L"GetSerialNumber", SERIAL_NUMBER); }
    const UINT8* GetAssetTag() const { return GetField(L"GetAssetTag", ASSET_TAG); }
    const UINT8* GetFileId() const { return GetField(L"GetFileId", FILE_ID); }
    UINT8 GetManufacturerNameTL() const { return GetFieldTL(L"GetManufacturerNameTL", MANUFACTURER_NAME); }
    UINT8 GetProductNameTL() const { return GetFieldTL(L"GetProductNameTL", PRODUCT_NAME); }
    UINT8 GetPartNumberTL() const { return GetFieldTL(L"GetPartNumberTL", PART_NUMBER); }
    UINT8 GetVersionTL() const { return GetFieldTL(L"GetVersionTL", VERSION); }
    UINT8 GetSerialNumberTL() const { return GetFieldTL(L"GetSerialNumberTL", SERIAL_NUMBER); }
    UINT8 GetAssetTagTL() const { return GetFieldTL(L"GetAssetTagTL", ASSET_TAG); }
    UINT8 GetFileIdTL() const { return GetFieldTL(L"GetFileIdTL", FILE_ID); }
    bool SetManufacturerName(const UINT8* data, UINTN length, FRU_FIELD_TYPE type) {
        return SetField(MANUFACTURER_NAME, data, length, type);
    }
    bool SetProductName(const UINT8* data, UINTN length, FRU_FIELD_TYPE type) {
        return SetField(PRODUCT_NAME, data, length, type);
    }
    bool SetPartNumber(const UINT8* data, UINTN length, FRU_FIELD_TYPE type) {
        return SetField(PART_NUMBER, data, length, type);
    }
    bool SetVersion(const UINT8* data, UINTN length, FRU_FIELD_TYPE type) {
        return SetField(VERSION, data, length, type);
    }
    bool SetSerialNumber(const UINT8* data, UINTN length, FRU_FIELD_TYPE type) {
        return SetField(SERIAL_NUMBER, data, length, type);
    }
    bool SetAssetTag(const UINT8* data, UINTN length, FRU_FIELD_TYPE type) {
        return SetField(ASSET_TAG, data, length, type);
    }
    bool SetFileId(const UINT8* data, UINTN length, FRU_FIELD_TYPE type) {
        return SetField(FILE_ID, data, length, type);
    }

  protected:
    bool SetHeaderField(const CTrace&, const UINT8*, UINTN) override { return false; }
    std::unique_ptr<WCHAR[]> HeaderFieldText(const CTrace&) const override { return nullptr; }
    void EndOfFieldsFound(UINTN end) const override;

  private:
    enum : UINTN {
        MANUFACTURER_NAME,
        PRODUCT_NAME,
        PART_NUMBER,
        VERSION,
        SERIAL_NUMBER,
        ASSET_TAG,
        FILE_ID
    };
};

} // namespace Frudata_Private

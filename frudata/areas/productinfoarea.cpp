#include "frudata/areas/productinfoarea.h"

namespace Frudata_Private {

UINTN nTotalAssetTagLength = 0;

namespace {

constexpr INFO_AREA_FIELD PRODUCT_FIELDS[] = {
    {STRING_PRODUCT_MANUFACTURER_NAME, L"SetManufacturerName"},
    {STRING_PRODUCT_NAME, L"SetProductName"},
    {STRING_PRODUCT_PART_NUMBER, L"SetPartNumber"},
    {STRING_PRODUCT_VERSION, L"SetVersion"},
    {STRING_PRODUCT_SERIAL_NUMBER, L"SetSerialNumber"},
    {STRING_PRODUCT_ASSET_TAG, L"SetAssetTag"},
    {STRING_PRODUCT_FILE_ID, L"SetFileId"},
};
static_assert(std::size(PRODUCT_FIELDS) == CProductInfoArea::NUMBER_OF_FIELDS);

constexpr INFO_AREA_DESCRIPTION PRODUCT_DESCRIPTION = {
    .className = L"CProductInfoArea",
    .sourceFile = "productinfoarea.cpp",
    .firstField = FRU_FIELD_PRODUCT_MANUFACTURER_NAME,
    .fields = PRODUCT_FIELDS,
    .customTitle = STRING_PRODUCT_CUSTOM_FIELD,
    .headerSize = OTHER_HEADER_SIZE,
    .headerFieldOffset = 0,
    .headerFieldSize = 0,
    .headerFieldMarksModified = false,
    // Compatibility: a change of custom fields alone is not written back to the device.
    .customFieldsMarkModified = false,
    .assertsFieldSelection = true,
    .assertsPadding = false,
    .customIndexCondition = "nIndexOfFieldToGet <= ( UINTN ) m_NumOfCustomFields",
    .customPositionCondition = "nCurFieldIndex < ( UINTN ) m_NumOfCustomFields",
    .reportsRefusals = true,
    .tooLong = L"FRU Data Too Long",
    .valueNoMemory = L"FRU Error Allocation",
    .customValueNoMemory = L"FRU Error Allocation",
};
static_assert(IsWithinCapacity(PRODUCT_DESCRIPTION));

} // namespace

CProductInfoArea::CProductInfoArea() : CInfoArea(PRODUCT_DESCRIPTION) {}

void CProductInfoArea::EndOfFieldsFound(UINTN end) const {
    nTotalAssetTagLength = m_header[HEADER_LENGTH] * 8U - end + DecodeLength(m_fields[ASSET_TAG].GetTypeLength()) - 1;
}

} // namespace Frudata_Private

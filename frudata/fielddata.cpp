// Values at the cursor: field texts and bytes, room, and the areas read and written whole.
#include "frudata/operation.h"
#include "frudata/operations.h"

#include <cstring>

namespace Frudata_Private {

namespace {

/// The reports of each info area's failures.
struct AREA_MESSAGES {
    FRU_AREA area;
    const WCHAR* getReason;
    STRING_ID getMessage;
    const WCHAR* setReason;
    STRING_ID setMessage;
};

constexpr AREA_MESSAGES MESSAGES[] = {
    {FRU_AREA_CHASSIS, L"Failed to get Chassis Data", STRING_CHASSIS_NOT_READ, L"Failed to set Chassis Data",
     STRING_CHASSIS_NOT_SET},
    {FRU_AREA_BOARD, L"Failed to get Board Data", STRING_BOARD_NOT_READ, L"Failed to set Board Data",
     STRING_BOARD_NOT_SET},
    {FRU_AREA_PRODUCT, L"Failed to get Product Data", STRING_PRODUCT_NOT_READ, L"Failed to set Product Data",
     STRING_PRODUCT_NOT_SET},
};

const AREA_MESSAGES& MessagesOf(FRU_AREA area) {
    return MESSAGES[area - FRU_AREA_CHASSIS];
}

EFI_STATUS FailUnsupported(const COperation& operation) {
    return operation.Fail(L"Unsupported", STRING_UNSUPPORTED, FRU_STATUS_UNSUPPORTED);
}

// Compatibility: a message is recorded even before `Initialize`.
EFI_STATUS RecordEarlyCall(EFI_STATUS status) {
    if (status == FRU_STATUS_NOT_INITIALIZED)
        RecordLastError(STRING_UNEXPECTED);
    return status;
}

EFI_STATUS CopyInternalUse(const CInternalUseArea& area, UINT8* buffer, UINTN capacity, unsigned int& length) {
    if (capacity < area.GetLength())
        return FRU_STATUS_BUFFER_TOO_SMALL;
    std::memcpy(buffer, area.GetData(), area.GetLength());
    length = area.GetLength();
    return FRU_STATUS_SUCCESS;
}

EFI_STATUS CopyArea(CFru& fru, FRU_AREA area, UINT8* buffer, UINTN capacity, unsigned int& length) {
    switch (area) {
    case FRU_AREA_INTERNAL_USE:
        return CopyInternalUse(fru.GetInternalUseArea(), buffer, capacity, length);
    case FRU_AREA_MULTIRECORD: {
        const EFI_STATUS status = fru.SerializeMultiRecArea(buffer, capacity);
        length = status == FRU_STATUS_SUCCESS ? capacity : 0;
        return status;
    }
    case FRU_AREA_COMMON_HEADER:
        if (capacity != CFruHeader::FRU_HEADER_LENGTH)
            return FRU_STATUS_BUFFER_TOO_SMALL;
        length = CFruHeader::FRU_HEADER_LENGTH;
        return fru.SerializeCommonHeader(buffer);
    default:
        return FRU_STATUS_UNSUPPORTED;
    }
}

EFI_STATUS ReplaceArea(CFru& fru, FRU_AREA area, const UINT8* data, UINTN length) {
    if (area == FRU_AREA_MULTIRECORD)
        return fru.SetMultiRecArea(data, length, true);
    CInternalUseArea& internalUse = fru.GetInternalUseArea();
    // The internal use area is never resized: the areas behind it would have to move.
    if (area == FRU_AREA_INTERNAL_USE && internalUse.GetLength() == length && internalUse.SetData(data, length, true))
        return FRU_STATUS_SUCCESS;
    return FRU_STATUS_UNSUPPORTED;
}

/// Runs an operation on whole areas. A null argument counts as not initialised; every failure is the unexpected one.
/// Compatibility: behind the checks a failure traces its exit, too.
template <typename BODY> EFI_STATUS RunAreaOperation(const WCHAR* name, bool hasArguments, BODY body) {
    const COperation operation(name);
    EFI_STATUS status = hasArguments ? operation.Check(NEED_AREA) : EFI_STATUS{FRU_STATUS_NOT_INITIALIZED};
    if (status == FRU_STATUS_NOT_INITIALIZED)
        return operation.FailUnexpected(status);
    if (status != FRU_STATUS_SUCCESS)
        return status;
    status = body(g_FruData->SelectedFru(), g_FruData->m_area);
    if (status != FRU_STATUS_SUCCESS)
        operation.FailUnexpected(status);
    return operation.Trace().Exit(status);
}

} // namespace

} // namespace Frudata_Private

namespace Frudata_Public {

using namespace Frudata_Private;

EFI_STATUS GetMaxFieldSize(_EFI_FRU_INTERFACE*, unsigned int& size) {
    return RecordEarlyCall(RunOperation(L"GetMaxFieldSize", NEED_AREA, [&](const COperation& operation) {
        size = 0;
        if (g_FruData->m_area == FRU_AREA_COMMON_HEADER)
            return FRU_STATUS_SUCCESS;
        const CInfoArea* area = g_FruData->SelectedFru().GetInfoArea(g_FruData->m_area);
        if (!area)
            return FailUnsupported(operation);
        size = static_cast<unsigned int>(area->GetPadLength());
        return FRU_STATUS_SUCCESS;
    }));
}

EFI_STATUS GetFieldStringValue(_EFI_FRU_INTERFACE*, const WCHAR*& value) {
    return RunOperation(L"GetFieldStringValue", NEED_FIELD, [&](const COperation& operation) {
        value = nullptr;
        CFruArea* area = g_FruData->SelectedFru().GetFieldArea(g_FruData->m_area);
        // Compatibility: the other operations on values return UNSUPPORTED.
        if (!area)
            return operation.Fail(L"Unsupported", STRING_UNSUPPORTED, FRU_STATUS_NO_SUCH_FIELD);
        value = area->GetFieldValueFromIndex(g_FruData->m_nField);
        return FRU_STATUS_SUCCESS;
    });
}

EFI_STATUS GetFieldDataValue(_EFI_FRU_INTERFACE*, const UINT8*& data, unsigned int& length) {
    return RunOperation(L"GetFieldDataValue", NEED_FIELD, [&](const COperation& operation) {
        data = nullptr;
        length = 0;
        const CInfoArea* area = g_FruData->SelectedFru().GetInfoArea(g_FruData->m_area);
        if (!area)
            return FailUnsupported(operation);
        if (!area->GetFieldData(g_FruData->m_nField, data, length)) {
            const AREA_MESSAGES& messages = MessagesOf(g_FruData->m_area);
            return operation.Fail(messages.getReason, messages.getMessage, FRU_STATUS_GET_FIELD_FAILED);
        }
        return FRU_STATUS_SUCCESS;
    });
}

EFI_STATUS SetFieldDataValue(_EFI_FRU_INTERFACE*, const UINT8* data, unsigned int length) {
    return RecordEarlyCall(RunOperation(L"SetFieldDataValue", NEED_FIELD, [&](const COperation& operation) {
        CInfoArea* area = g_FruData->SelectedFru().GetInfoArea(g_FruData->m_area);
        if (!area)
            return FailUnsupported(operation);
        if (!area->SetFieldData(g_FruData->m_nField, data, length, FRU_FIELD_TYPE_TEXT)) {
            const AREA_MESSAGES& messages = MessagesOf(g_FruData->m_area);
            return operation.Fail(messages.setReason, messages.setMessage, FRU_STATUS_SET_FIELD_FAILED);
        }
        return FRU_STATUS_SUCCESS;
    }));
}

EFI_STATUS GetAssetTagLength(_EFI_FRU_INTERFACE*, unsigned int& length) {
    return RunOperation(L"GetAssetTagLength", NEED_LOADED, [&](const COperation&) {
        length = nTotalAssetTagLength;
        return FRU_STATUS_SUCCESS;
    });
}

EFI_STATUS GetAreaSize(_EFI_FRU_INTERFACE* This, unsigned int& size) {
    size = 0;
    return RunAreaOperation(L"GetAreaSize", This != nullptr, [&](CFru& fru, FRU_AREA area) {
        switch (area) {
        case FRU_AREA_INTERNAL_USE:
            size = fru.GetInternalAreaLength();
            return FRU_STATUS_SUCCESS;
        case FRU_AREA_MULTIRECORD:
            size = fru.GetMultiRecAreaLength();
            return FRU_STATUS_SUCCESS;
        default:
            return FRU_STATUS_UNSUPPORTED;
        }
    });
}

EFI_STATUS GetAreaData(_EFI_FRU_INTERFACE* This, UINT8* buffer, unsigned int& length) {
    const UINTN capacity = length;
    length = 0;
    return RunAreaOperation(L"GetAreaData", This && buffer,
                            [&](CFru& fru, FRU_AREA area) { return CopyArea(fru, area, buffer, capacity, length); });
}

EFI_STATUS SetAreaData(_EFI_FRU_INTERFACE* This, const UINT8* data, unsigned int length) {
    return RunAreaOperation(L"SetAreaData", This && data,
                            [&](CFru& fru, FRU_AREA area) { return ReplaceArea(fru, area, data, length); });
}

} // namespace Frudata_Public

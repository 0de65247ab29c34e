// The cursor: FRU, area and field.
#include "frudata/operation.h"
#include "frudata/operations.h"

namespace Frudata_Private {

namespace {

/// The areas of a FRU in the numbering of `SelectAreaInteger`.
constexpr struct {
    FRU_AREA area;
    bool (CFru::*isPresent)() const;
    STRING_ID name;
} AREAS[] = {
    {FRU_AREA_INTERNAL_USE, &CFru::HasInternalArea, STRING_AREA_INTERNAL_USE},
    {FRU_AREA_CHASSIS, &CFru::HasChassisArea, STRING_AREA_CHASSIS},
    {FRU_AREA_BOARD, &CFru::HasBoardArea, STRING_AREA_BOARD},
    {FRU_AREA_PRODUCT, &CFru::HasProductArea, STRING_AREA_PRODUCT},
    {FRU_AREA_MULTIRECORD, &CFru::HasMultiRecArea, STRING_AREA_MULTIRECORD},
};

EFI_STATUS HasArea(const WCHAR* name, bool (CFru::*isPresent)() const, bool& present) {
    return RunOperation(name, NEED_FRU, [&](const COperation&) {
        present = (g_FruData->SelectedFru().*isPresent)();
        return FRU_STATUS_SUCCESS;
    });
}

/// Selects the field that `indexOf(area)` finds; CURSOR_NONE means that the area has no such field.
template <typename INDEX_OF> EFI_STATUS SelectField(const WCHAR* name, INDEX_OF indexOf) {
    return RunOperation(name, NEED_AREA, [&](const COperation& operation) {
        g_FruData->m_nField = CURSOR_NONE;
        const CFruArea* area = g_FruData->SelectedFru().GetFieldArea(g_FruData->m_area);
        if (!area)
            return operation.Fail(L"Unsupported", STRING_UNSUPPORTED, FRU_STATUS_UNSUPPORTED);
        g_FruData->m_nField = indexOf(*area);
        if (g_FruData->m_nField == CURSOR_NONE)
            return operation.Fail(L"No such FRU Field", STRING_NO_SUCH_FIELD, FRU_STATUS_NO_SUCH_FIELD);
        return FRU_STATUS_SUCCESS;
    });
}

} // namespace

} // namespace Frudata_Private

namespace Frudata_Public {

using namespace Frudata_Private;

EFI_STATUS GetNumberOfFrus(_EFI_FRU_INTERFACE*, unsigned int& first, unsigned int& second) {
    return RunOperation(L"GetNumberOfFrus", NEED_LIST, [&](const COperation&) {
        second = g_FruData->m_pCurrentList->Count();
        first = g_FruData->m_listType == FRU_LIST_SYSTEM ? g_FruData->m_pLocatorList->Count() : second;
        return FRU_STATUS_SUCCESS;
    });
}

EFI_STATUS SelectFru(_EFI_FRU_INTERFACE*, unsigned int index) {
    return RunOperation(L"SelectFru", NEED_LIST, [&](const COperation& operation) {
        g_FruData->ClearFru();
        if (index >= g_FruData->m_pCurrentList->Count())
            return operation.FailUnexpected(FRU_STATUS_NO_SUCH_FIELD);
        g_FruData->m_nFru = index;
        return FRU_STATUS_SUCCESS;
    });
}

EFI_STATUS SelectFruByAddress(_EFI_FRU_INTERFACE*, FRU_TYPE type, UINT8 lun, UINT8 deviceAddress, UINT8 bus,
                              UINT8 controller, UINT8 deviceId, UINT8, UINT16) {
    return RunOperation(L"SelectFruByAddress", NEED_LIST, [&](const COperation& operation) {
        g_FruData->ClearFru();
        const OrderedList<CFru*>& list = *g_FruData->m_pCurrentList;
        UINT32 index = 0;
        for (CFru* pFru = list.First(); pFru; pFru = list.Next(pFru), ++index) {
            const FRU_LOCATOR& locator = *pFru->GetDevLocator();
            if (locator.type == type && locator.lun == lun && locator.deviceAddress == deviceAddress &&
                locator.bus == bus && locator.controller == controller && locator.deviceId == deviceId) {
                g_FruData->m_nFru = index;
                return FRU_STATUS_SUCCESS;
            }
        }
        return operation.Fail(L"Error - Not Found", STRING_FRU_NOT_FOUND, FRU_STATUS_NO_SUCH_FIELD);
    });
}

EFI_STATUS GetFruName(_EFI_FRU_INTERFACE*, const WCHAR*& name) {
    return RunOperation(L"GetFruName", NEED_FRU,
                        [&](const COperation&) { return g_FruData->SelectedFru().GetFruNameString(name); });
}

EFI_STATUS GetFruAddress(_EFI_FRU_INTERFACE*, FRU_TYPE& type, UINT8& lun, UINT8& deviceAddress, UINT8& bus,
                         UINT8& controller, UINT8& deviceId, UINT8& mbmcSizeData, UINT16& mbmcSizeAddress) {
    return RunOperation(L"GetFruAddress", NEED_FRU, [&](const COperation&) {
        const FRU_LOCATOR& locator = *g_FruData->SelectedFru().GetDevLocator();
        type = locator.type;
        lun = locator.lun;
        deviceAddress = locator.deviceAddress;
        bus = locator.bus;
        controller = locator.controller;
        deviceId = locator.deviceId;
        mbmcSizeData = locator.mbmcSizeData;
        mbmcSizeAddress = locator.mbmcSizeAddress;
        return FRU_STATUS_SUCCESS;
    });
}

EFI_STATUS HasInternalUseArea(_EFI_FRU_INTERFACE*, bool& present) {
    return HasArea(L"HasInternalUseArea", &CFru::HasInternalArea, present);
}

EFI_STATUS HasBoardArea(_EFI_FRU_INTERFACE*, bool& present) {
    return HasArea(L"HasBoardArea", &CFru::HasBoardArea, present);
}

EFI_STATUS HasProductArea(_EFI_FRU_INTERFACE*, bool& present) {
    return HasArea(L"HasProductArea", &CFru::HasProductArea, present);
}

EFI_STATUS HasChassisArea(_EFI_FRU_INTERFACE*, bool& present) {
    return HasArea(L"HasChassisArea", &CFru::HasChassisArea, present);
}

EFI_STATUS HasMultiRecordArea(_EFI_FRU_INTERFACE*, bool& present) {
    return HasArea(L"HasMultiRecordArea", &CFru::HasMultiRecArea, present);
}

EFI_STATUS GetNumberOfAreas(_EFI_FRU_INTERFACE*, unsigned int& count) {
    return RunOperation(L"GetNumberOfAreas", NEED_FRU, [&](const COperation&) {
        count = g_FruData->SelectedFru().GetNumberOfAreas();
        return FRU_STATUS_SUCCESS;
    });
}

EFI_STATUS SelectAreaEnum(_EFI_FRU_INTERFACE*, FRU_AREA area) {
    return RunOperation(L"SelectAreaEnum", NEED_FRU, [&](const COperation& operation) {
        g_FruData->ClearArea();
        const CFru& fru = g_FruData->SelectedFru();
        if (area == FRU_AREA_COMMON_HEADER) {
            g_FruData->m_area = area;
            return FRU_STATUS_SUCCESS;
        }
        for (const auto& row : AREAS) {
            if (row.area != area)
                continue;
            // Compatibility: an absent area is no failure here, but of the next operation that needs one.
            if ((fru.*row.isPresent)())
                g_FruData->m_area = area;
            return FRU_STATUS_SUCCESS;
        }
        return operation.FailUnexpected(FRU_STATUS_NO_SUCH_FIELD);
    });
}

EFI_STATUS SelectAreaInteger(_EFI_FRU_INTERFACE*, unsigned int n) {
    return RunOperation(L"SelectAreaInteger", NEED_FRU, [&](const COperation& operation) {
        g_FruData->ClearArea();
        const CFru& fru = g_FruData->SelectedFru();
        if (n >= fru.GetNumberOfAreas())
            return operation.FailUnexpected(FRU_STATUS_NO_SUCH_FIELD);
        unsigned int position = 0;
        for (const auto& row : AREAS) {
            if ((fru.*row.isPresent)() && position++ == n) {
                g_FruData->m_area = row.area;
                return FRU_STATUS_SUCCESS;
            }
        }
        return operation.FailUnexpected(FRU_STATUS_NO_SUCH_FIELD);
    });
}

EFI_STATUS GetAreaName(_EFI_FRU_INTERFACE*, const WCHAR*& name) {
    return RunOperation(L"GetAreaName", NEED_AREA, [&](const COperation& operation) {
        for (const auto& row : AREAS) {
            if (row.area == g_FruData->m_area) {
                name = GetText(row.name);
                return FRU_STATUS_SUCCESS;
            }
        }
        return operation.FailUnexpected(FRU_STATUS_NO_SUCH_FIELD);
    });
}

EFI_STATUS GetNumberOfFields(_EFI_FRU_INTERFACE*, unsigned int& count) {
    return RunOperation(L"GetNumberOfFields", NEED_AREA, [&](const COperation& operation) {
        count = 0;
        if (g_FruData->m_area == FRU_AREA_COMMON_HEADER)
            return operation.FailUnexpected(FRU_STATUS_NO_SUCH_FIELD);
        if (const CFruArea* area = g_FruData->SelectedFru().GetFieldArea(g_FruData->m_area))
            count = area->GetNumberOfFields();
        return FRU_STATUS_SUCCESS;
    });
}

EFI_STATUS SelectFieldEnum(_EFI_FRU_INTERFACE*, FRU_FIELD field) {
    return SelectField(L"SelectFieldEnum", [field](const CFruArea& area) { return area.GetFieldIndexFromEnum(field); });
}

EFI_STATUS SelectFieldInteger(_EFI_FRU_INTERFACE*, unsigned int n) {
    return SelectField(L"SelectFieldInteger",
                       [n](const CFruArea& area) { return n < area.GetNumberOfFields() ? n : CURSOR_NONE; });
}

EFI_STATUS GetFieldTitle(_EFI_FRU_INTERFACE*, const WCHAR*& title) {
    return RunOperation(L"GetFieldTitle", NEED_FIELD, [&](const COperation& operation) {
        title = nullptr;
        const CFruArea* area = g_FruData->SelectedFru().GetFieldArea(g_FruData->m_area);
        if (!area)
            return operation.FailUnexpected(FRU_STATUS_NO_SUCH_FIELD);
        title = area->GetFieldTitleFromIndex(g_FruData->m_nField);
        return FRU_STATUS_SUCCESS;
    });
}

} // namespace Frudata_Public

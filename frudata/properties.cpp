// The cursor over the three system properties.
#include "frudata/operation.h"
#include "frudata/operations.h"

#include <iterator>

namespace Frudata_Private {

namespace {

constexpr struct {
    STRING_ID title;
    const WCHAR* (CFruProperties::*value)() const;
} PROPERTIES[] = {
    {STRING_PROPERTY_IPMI_VERSION, &CFruProperties::GetIpmiVersionString},
    {STRING_PROPERTY_NUMBER_OF_FRUS, &CFruProperties::GetNumberOfFrusString},
    {STRING_PROPERTY_NUMBER_OF_IPMI_FRUS, &CFruProperties::GetNumberOfIpmiFrusString},
};

/// Runs `body(operation)` if the properties are loaded; it needs no loaded configuration.
template <typename BODY> EFI_STATUS RunPropertyOperation(const WCHAR* name, BODY body) {
    return RunOperation(name, NEED_INITIALIZED, [&](const COperation& operation) {
        return g_FruData->m_fPropertiesLoaded ? body(operation) : operation.FailUnexpected(FRU_STATUS_NOT_LOADED);
    });
}

/// Sets `output` to `textOf(row)` of the selected property.
template <typename TEXT_OF> EFI_STATUS GetPropertyText(const WCHAR* name, const WCHAR*& output, TEXT_OF textOf) {
    return RunPropertyOperation(name, [&](const COperation& operation) {
        if (g_FruData->m_nProperty == CURSOR_NONE)
            return operation.FailUnexpected(FRU_STATUS_NOT_SELECTED);
        output = textOf(PROPERTIES[g_FruData->m_nProperty]);
        return FRU_STATUS_SUCCESS;
    });
}

} // namespace

} // namespace Frudata_Private

namespace Frudata_Public {

using namespace Frudata_Private;

EFI_STATUS LoadPropertiesFromSystem(_EFI_FRU_INTERFACE*) {
    return RunOperation(L"LoadPropertiesFromSystem", NEED_INITIALIZED, [](const COperation&) {
        const EFI_STATUS status = InitializeFruProperties(g_FruData->m_properties, g_FruData->m_pLocatorList->Count(),
                                                          g_FruData->m_pSystemList->Count());
        if (status == FRU_STATUS_SUCCESS)
            g_FruData->m_fPropertiesLoaded = true;
        return status;
    });
}

EFI_STATUS GetNumberOfProperties(_EFI_FRU_INTERFACE*, unsigned int& count) {
    return RunPropertyOperation(L"GetNumberOfProperties", [&](const COperation&) {
        count = std::size(PROPERTIES);
        return EFI_STATUS{FRU_STATUS_SUCCESS};
    });
}

EFI_STATUS SelectProperty(_EFI_FRU_INTERFACE*, unsigned int index) {
    return RunPropertyOperation(L"SelectProperty", [&](const COperation& operation) {
        g_FruData->m_nProperty = CURSOR_NONE;
        if (index >= std::size(PROPERTIES))
            return operation.FailUnexpected(FRU_STATUS_NO_SUCH_FIELD);
        g_FruData->m_nProperty = index;
        return FRU_STATUS_SUCCESS;
    });
}

EFI_STATUS GetPropertyTitle(_EFI_FRU_INTERFACE*, const WCHAR*& title) {
    return GetPropertyText(L"GetPropertyTitle", title, [](const auto& row) { return GetText(row.title); });
}

EFI_STATUS GetPropertyValue(_EFI_FRU_INTERFACE*, const WCHAR*& value) {
    return GetPropertyText(L"GetPropertyValue", value,
                           [](const auto& row) { return (g_FruData->m_properties.*row.value)(); });
}

} // namespace Frudata_Public

// The exported function table.
#include "frudata/frudata.h"

#include "frudata/operations.h"

_EFI_FRU_INTERFACE Frudata_Public::FRUDataInterface = {
    FRUDATA_INTERFACE_REVISION,
    Initialize,
    DeInitialize,
    LoadConfigurationFromSystem,
    LoadConfigurationFromFile,
    CommitConfigurationToSystem,
    SaveConfigurationToFile,
    IsLoaded,
    IsModified,
    GetLastErrorMessage,
    SetLanguageLocale,
    SetProgressCallback,
    SetProgressCallbackInterval,
    SetDebugLevel,
    SetDisplayCallback,
    LoadFruAtAddress,
    ::SelectList,
    GetNumberOfFrus,
    SelectFru,
    SelectFruByAddress,
    GetFruName,
    GetFruAddress,
    HasInternalUseArea,
    HasBoardArea,
    HasProductArea,
    HasChassisArea,
    HasMultiRecordArea,
    GetNumberOfAreas,
    SelectAreaEnum,
    SelectAreaInteger,
    GetAreaName,
    GetNumberOfFields,
    SelectFieldEnum,
    SelectFieldInteger,
    GetFieldTitle,
    GetMaxFieldSize,
    GetFieldStringValue,
    GetFieldDataValue,
    SetFieldDataValue,
    AddFruToSystemList,
    LoadPropertiesFromSystem,
    GetNumberOfProperties,
    SelectProperty,
    GetPropertyTitle,
    GetPropertyValue,
    GetAreaData,
    SetAreaData,
    SetPwd,
    GetAreaSize,
    FindFruAtAddressAndChecksumHeader,
    GetAssetTagLength,
};

const EFI_GUID g_FruDataGuid = {0xA27157C0, 0xD80E, 0x433A, {0xAA, 0xD0, 0xF1, 0xE1, 0xF7, 0xEB, 0xD6, 0xA9}};

_EFI_FRU_INTERFACE* GetFruDataInterface() {
    return &Frudata_Public::FRUDataInterface;
}

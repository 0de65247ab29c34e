// The operations of the table. The public header has their contracts.
#pragma once

#include "frudata/frudata.h"

namespace Frudata_Public {

EFI_STATUS Initialize(_EFI_FRU_INTERFACE* This, int platform);
EFI_STATUS DeInitialize(_EFI_FRU_INTERFACE* This);
EFI_STATUS LoadConfigurationFromSystem(_EFI_FRU_INTERFACE* This);
EFI_STATUS LoadConfigurationFromFile(_EFI_FRU_INTERFACE* This, const WCHAR* fileName, const WCHAR* auxFileName);
EFI_STATUS CommitConfigurationToSystem(_EFI_FRU_INTERFACE* This);
EFI_STATUS SaveConfigurationToFile(_EFI_FRU_INTERFACE* This, const WCHAR* fileName, const WCHAR* auxFileName);
EFI_STATUS IsLoaded(_EFI_FRU_INTERFACE* This, bool& loaded);
EFI_STATUS IsModified(_EFI_FRU_INTERFACE* This, bool& modified);
EFI_STATUS GetLastErrorMessage(_EFI_FRU_INTERFACE* This, const WCHAR*& message);
EFI_STATUS SetLanguageLocale(_EFI_FRU_INTERFACE* This, const WCHAR* language, const WCHAR* country);
EFI_STATUS SetProgressCallback(_EFI_FRU_INTERFACE* This, FRU_PROGRESS_CALLBACK callback);
EFI_STATUS SetProgressCallbackInterval(_EFI_FRU_INTERFACE* This, unsigned int interval);
EFI_STATUS SetDebugLevel(_EFI_FRU_INTERFACE* This, unsigned int level);
EFI_STATUS SetDisplayCallback(_EFI_FRU_INTERFACE* This, FRU_DISPLAY_CALLBACK callback);
EFI_STATUS LoadFruAtAddress(_EFI_FRU_INTERFACE* This, FRU_TYPE type, UINT8 lun, UINT8 deviceAddress, UINT8 bus,
                            UINT8 controller, UINT8 deviceId, UINT8 mbmcSizeData, UINT16 mbmcSizeAddress);
EFI_STATUS GetNumberOfFrus(_EFI_FRU_INTERFACE* This, unsigned int& first, unsigned int& second);
EFI_STATUS SelectFru(_EFI_FRU_INTERFACE* This, unsigned int index);
EFI_STATUS SelectFruByAddress(_EFI_FRU_INTERFACE* This, FRU_TYPE type, UINT8 lun, UINT8 deviceAddress, UINT8 bus,
                              UINT8 controller, UINT8 deviceId, UINT8 mbmcSizeData, UINT16 mbmcSizeAddress);
EFI_STATUS GetFruName(_EFI_FRU_INTERFACE* This, const WCHAR*& name);
EFI_STATUS GetFruAddress(_EFI_FRU_INTERFACE* This, FRU_TYPE& type, UINT8& lun, UINT8& deviceAddress, UINT8& bus,
                         UINT8& controller, UINT8& deviceId, UINT8& mbmcSizeData, UINT16& mbmcSizeAddress);
EFI_STATUS HasInternalUseArea(_EFI_FRU_INTERFACE* This, bool& present);
EFI_STATUS HasBoardArea(_EFI_FRU_INTERFACE* This, bool& present);
EFI_STATUS HasProductArea(_EFI_FRU_INTERFACE* This, bool& present);
EFI_STATUS HasChassisArea(_EFI_FRU_INTERFACE* This, bool& present);
EFI_STATUS HasMultiRecordArea(_EFI_FRU_INTERFACE* This, bool& present);
EFI_STATUS GetNumberOfAreas(_EFI_FRU_INTERFACE* This, unsigned int& count);
EFI_STATUS SelectAreaEnum(_EFI_FRU_INTERFACE* This, FRU_AREA area);
EFI_STATUS SelectAreaInteger(_EFI_FRU_INTERFACE* This, unsigned int n);
EFI_STATUS GetAreaName(_EFI_FRU_INTERFACE* This, const WCHAR*& name);
EFI_STATUS GetNumberOfFields(_EFI_FRU_INTERFACE* This, unsigned int& count);
EFI_STATUS SelectFieldEnum(_EFI_FRU_INTERFACE* This, FRU_FIELD field);
EFI_STATUS SelectFieldInteger(_EFI_FRU_INTERFACE* This, unsigned int n);
EFI_STATUS GetFieldTitle(_EFI_FRU_INTERFACE* This, const WCHAR*& title);
EFI_STATUS GetMaxFieldSize(_EFI_FRU_INTERFACE* This, unsigned int& size);
EFI_STATUS GetFieldStringValue(_EFI_FRU_INTERFACE* This, const WCHAR*& value);
EFI_STATUS GetFieldDataValue(_EFI_FRU_INTERFACE* This, const UINT8*& data, unsigned int& length);
EFI_STATUS SetFieldDataValue(_EFI_FRU_INTERFACE* This, const UINT8* data, unsigned int length);
EFI_STATUS AddFruToSystemList(_EFI_FRU_INTERFACE* This);
EFI_STATUS LoadPropertiesFromSystem(_EFI_FRU_INTERFACE* This);
EFI_STATUS GetNumberOfProperties(_EFI_FRU_INTERFACE* This, unsigned int& count);
EFI_STATUS SelectProperty(_EFI_FRU_INTERFACE* This, unsigned int index);
EFI_STATUS GetPropertyTitle(_EFI_FRU_INTERFACE* This, const WCHAR*& title);
EFI_STATUS GetPropertyValue(_EFI_FRU_INTERFACE* This, const WCHAR*& value);
EFI_STATUS GetAreaData(_EFI_FRU_INTERFACE* This, UINT8* buffer, unsigned int& length);
EFI_STATUS SetAreaData(_EFI_FRU_INTERFACE* This, const UINT8* data, unsigned int length);
EFI_STATUS SetPwd(_EFI_FRU_INTERFACE* This, const UINT8* password, unsigned int length);
EFI_STATUS GetAreaSize(_EFI_FRU_INTERFACE* This, unsigned int& size);
EFI_STATUS FindFruAtAddressAndChecksumHeader(_EFI_FRU_INTERFACE* This, FRU_TYPE type, UINT8 lun, UINT8 deviceAddress,
                                             UINT8 bus, UINT8 controller, UINT8 deviceId);
EFI_STATUS GetAssetTagLength(_EFI_FRU_INTERFACE* This, unsigned int& length);

} // namespace Frudata_Public

/// The one operation outside the namespace.
EFI_STATUS SelectList(_EFI_FRU_INTERFACE* This, int list);

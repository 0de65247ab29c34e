/** frudata: the table's layout, checked wherever the header is compiled. Included by frudata.h. @file */
#ifndef FRUDATA_LAYOUT_H
#define FRUDATA_LAYOUT_H

#ifdef __cplusplus
#define FRU_STATIC_ASSERT(condition, text) static_assert(condition, text)
#else
#define FRU_STATIC_ASSERT(condition, text) _Static_assert(condition, text)
#endif

/* The revision word takes one pointer's room, so slot n lies n pointers from the start. */
#define FRU_ASSERT_SLOT(slot, operation)                                                                               \
    FRU_STATIC_ASSERT(offsetof(struct _EFI_FRU_INTERFACE, operation) == (slot) * sizeof(void*),                        \
                      #operation " must be slot " #slot)

FRU_STATIC_ASSERT(sizeof(EFI_GUID) == 16, "a GUID has 16 bytes");
FRU_STATIC_ASSERT(sizeof(WCHAR) == 4, "wide characters have 4 bytes");
FRU_STATIC_ASSERT(sizeof(bool) == 1, "a bool has one byte");
FRU_STATIC_ASSERT(sizeof(FRU_TYPE) == 4 && sizeof(FRU_AREA) == 4 && sizeof(FRU_FIELD) == 4,
                  "enumerations have 4 bytes");
/* 204 bytes on the 32-bit target. */
FRU_STATIC_ASSERT(sizeof(struct _EFI_FRU_INTERFACE) == 51 * sizeof(void*), "revision word and 50 operations");
FRU_STATIC_ASSERT(offsetof(struct _EFI_FRU_INTERFACE, revision) == 0, "the revision word comes first");
FRU_ASSERT_SLOT(1, Initialize);
FRU_ASSERT_SLOT(2, DeInitialize);
FRU_ASSERT_SLOT(3, LoadConfigurationFromSystem);
FRU_ASSERT_SLOT(4, LoadConfigurationFromFile);
FRU_ASSERT_SLOT(5, CommitConfigurationToSystem);
FRU_ASSERT_SLOT(6, SaveConfigurationToFile);
FRU_ASSERT_SLOT(7, IsLoaded);
FRU_ASSERT_SLOT(8, IsModified);
FRU_ASSERT_SLOT(9, GetLastErrorMessage);
FRU_ASSERT_SLOT(10, SetLanguageLocale);
FRU_ASSERT_SLOT(11, SetProgressCallback);
FRU_ASSERT_SLOT(12, SetProgressCallbackInterval);
FRU_ASSERT_SLOT(13, SetDebugLevel);
FRU_ASSERT_SLOT(14, SetDisplayCallback);
FRU_ASSERT_SLOT(15, LoadFruAtAddress);
FRU_ASSERT_SLOT(16, SelectList);
FRU_ASSERT_SLOT(17, GetNumberOfFrus);
FRU_ASSERT_SLOT(18, SelectFru);
FRU_ASSERT_SLOT(19, SelectFruByAddress);
FRU_ASSERT_SLOT(20, GetFruName);
FRU_ASSERT_SLOT(21, GetFruAddress);
FRU_ASSERT_SLOT(22, HasInternalUseArea);
FRU_ASSERT_SLOT(23, HasBoardArea);
FRU_ASSERT_SLOT(24, HasProductArea);
FRU_ASSERT_SLOT(25, HasChassisArea);
FRU_ASSERT_SLOT(26, HasMultiRecordArea);
FRU_ASSERT_SLOT(27, GetNumberOfAreas);
FRU_ASSERT_SLOT(28, SelectAreaEnum);
FRU_ASSERT_SLOT(29, SelectAreaInteger);
FRU_ASSERT_SLOT(30, GetAreaName);
FRU_ASSERT_SLOT(31, GetNumberOfFields);
FRU_ASSERT_SLOT(32, SelectFieldEnum);
FRU_ASSERT_SLOT(33, SelectFieldInteger);
FRU_ASSERT_SLOT(34, GetFieldTitle);
FRU_ASSERT_SLOT(35, GetMaxFieldSize);
FRU_ASSERT_SLOT(36, GetFieldStringValue);
FRU_ASSERT_SLOT(37, GetFieldDataValue);
FRU_ASSERT_SLOT(38, SetFieldDataValue);
FRU_ASSERT_SLOT(39, AddFruToSystemList);
FRU_ASSERT_SLOT(40, LoadPropertiesFromSystem);
FRU_ASSERT_SLOT(41, GetNumberOfProperties);
FRU_ASSERT_SLOT(42, SelectProperty);
FRU_ASSERT_SLOT(43, GetPropertyTitle);
FRU_ASSERT_SLOT(44, GetPropertyValue);
FRU_ASSERT_SLOT(45, GetAreaData);
FRU_ASSERT_SLOT(46, SetAreaData);
FRU_ASSERT_SLOT(47, SetPwd);
FRU_ASSERT_SLOT(48, GetAreaSize);
FRU_ASSERT_SLOT(49, FindFruAtAddressAndChecksumHeader);
FRU_ASSERT_SLOT(50, GetAssetTagLength);

#undef FRU_ASSERT_SLOT

#endif

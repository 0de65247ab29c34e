/** @file
 * frudata: read, inspect, edit, save and write back the FRU inventory of a server.
 * Usable from C and C++; where C++ has a reference, C passes a pointer in its place.
 *
 * Conventions
 *
 * 1.  Table. GetFruDataInterface() returns one static table. Every operation is called through it and
 *     takes the table's address as its first argument, `This`.
 * 2.  Lifetime. `Initialize` comes first, `DeInitialize` last. Before `Initialize` only it,
 *     `SetLanguageLocale`, `SetDisplayCallback` and `SetPwd` do anything.
 * 3.  Status. Every operation returns an EFI_STATUS: 0 for success, else a FRU_STATUS_ code (types.h), which
 *     `@return` names without its prefix.
 *     Checks come in this order: initialised, loaded, selection, arguments.
 * 4.  Errors. The reason of a failure is a text in the current language. `GetLastErrorMessage` fetches and
 *     clears it; the text stays intact until the next such call. Not every failure has one.
 * 5.  Cursor. A host selects a list, a FRU, an area and a field, in this order; selecting at one level clears
 *     the levels below it. Values are read and written at the cursor.
 * 6.  Ownership. Texts and data handed out belong to the library. A field value is valid until the next
 *     value is asked of the same area, a title until the next `SetLanguageLocale`, a name as long as its
 *     FRU. Nothing that the caller passes in is kept, except callbacks.
 * 7.  Null. Output arguments must not be null. Other null arguments are refused unless stated otherwise.
 * 8.  Values. Everything set through the table is stored as 8-bit text (type code 3 of the FRU
 *     Information Storage Definition, section 13). A field may grow by the padding of its area only.
 * 9.  Assertions. Misuse, and an area image whose checksum is wrong, stop the process: the source file
 *     and the condition go to standard error, then abort(). This holds in every build type.
 * 10. Threads. There are none and nothing is locked: the caller serialises all calls.
 * 11. Signals and output. Device access over the KCS ports takes over SIGALRM (see bmclib.h). The
 *     discovery in `Initialize` may print to standard output, which then has wide orientation.
 */
#ifndef FRUDATA_FRUDATA_H
#define FRUDATA_FRUDATA_H

#include "frudata/types.h"

/** Version of the library. */
#define FRUDATA_VERSION "2.0.0"
/** Revision of the table: its first word. */
#define FRUDATA_INTERFACE_REVISION 0x00020000U

#ifdef __cplusplus
#define FRU_OUT(type) type&
#else
#define FRU_OUT(type) type*
#endif

typedef struct _EFI_FRU_INTERFACE _EFI_FRU_INTERFACE;

/** The function table. Its layout never changes within a revision. */
struct _EFI_FRU_INTERFACE {
    /** FRUDATA_INTERFACE_REVISION. */
    UINT32 revision;

    /* --- Lifecycle and settings -------------------------------------------------------------- */

    /**
     * Starts the library: looks for the BMC (its absence is no failure) and loads the texts of
     * "enus/frudata/str/frudata.str" below the current directory. With a null `This` no texts are loaded;
     * call `SetLanguageLocale` next. The table's file stays open until `DeInitialize`, closed when the host
     * starts another program. @param platform FRU_PLATFORM_MBMC or any other value
     * @return 0, INIT_FAILED
     */
    EFI_STATUS (*Initialize)(_EFI_FRU_INTERFACE* This, int platform);
    /** Frees everything. @return 0 (also when nothing was initialised), NOT_INITIALIZED after a failed start */
    EFI_STATUS (*DeInitialize)(_EFI_FRU_INTERFACE* This);

    /**
     * Loads the BMC's own FRU and appends it to the system list. A progress callback must be set first.
     * A device that cannot be read is no failure: the list then stays as it was.
     * @return 0, NOT_INITIALIZED, OUT_OF_MEMORY
     */
    EFI_STATUS (*LoadConfigurationFromSystem)(_EFI_FRU_INTERFACE* This);
    /**
     * Loads a FRU text file, appends it to the file list and selects it. Only a regular file is read.
     * @param fileName must not be null (assertion) @param auxFileName ignored
     * @return 0, NOT_INITIALIZED, OUT_OF_MEMORY, FILE_READ_ERROR, BUFFER_TOO_SMALL
     */
    EFI_STATUS (*LoadConfigurationFromFile)(_EFI_FRU_INTERFACE* This, const WCHAR* fileName, const WCHAR* auxFileName);
    /**
     * Writes the selected FRU of the system list back to its device: the header, the board area, and the
     * other areas where modified. Reports each step through the progress callback.
     * @return 0, NOT_INITIALIZED, NOT_LOADED, NO_SUCH_FIELD (no system FRU selected), WRITE_FRU_ERROR
     */
    EFI_STATUS (*CommitConfigurationToSystem)(_EFI_FRU_INTERFACE* This);
    /**
     * Writes the selected FRU to a FRU text file. @param fileName must not be null (assertion)
     * @param auxFileName reserved, must be null (assertion)
     * Only a regular file is written. A full disk is not noticed, nor a signal that ends a write early: read the
     * file back where that matters. The file is opened for each of its sections, eight times at most, so that a
     * process that is killed in between leaves its beginning.
     * @return 0, NOT_INITIALIZED, NOT_LOADED, NOT_SELECTED, OUT_OF_MEMORY, FILE_CREATE_ERROR, FILE_WRITE_ERROR
     */
    EFI_STATUS (*SaveConfigurationToFile)(_EFI_FRU_INTERFACE* This, const WCHAR* fileName, const WCHAR* auxFileName);
    /** Whether something was loaded. @return 0, NOT_INITIALIZED */
    EFI_STATUS (*IsLoaded)(_EFI_FRU_INTERFACE* This, FRU_OUT(bool) loaded);
    /** Always false: hosts track their changes themselves. @return 0, NOT_INITIALIZED, NOT_LOADED */
    EFI_STATUS (*IsModified)(_EFI_FRU_INTERFACE* This, FRU_OUT(bool) modified);
    /** The reason of the failure since the last call, or null; clears it. A text handed out stays intact until
     *  the next such call. @return 0, NOT_INITIALIZED */
    EFI_STATUS (*GetLastErrorMessage)(_EFI_FRU_INTERFACE* This, FRU_OUT(const WCHAR*) message);
    /**
     * Replaces the texts by those of the file LANGUAGE + COUNTRY + "/frudata/str/frudata.str". A failure
     * keeps the old ones. A host with its texts elsewhere puts the directory in front of the language.
     * @return 0, MEMORY_ALLOCATION_ERROR, STRING_RESOURCE_ERROR
     */
    EFI_STATUS (*SetLanguageLocale)(_EFI_FRU_INTERFACE* This, const WCHAR* language, const WCHAR* country);
    /** Sets the progress callback; null clears it. @return 0, NOT_INITIALIZED */
    EFI_STATUS (*SetProgressCallback)(_EFI_FRU_INTERFACE* This, FRU_PROGRESS_CALLBACK callback);
    /** Stored, without effect in this revision. @return 0, NOT_INITIALIZED */
    EFI_STATUS (*SetProgressCallbackInterval)(_EFI_FRU_INTERFACE* This, unsigned int interval);
    /** Sets the level of the debug log (debug.h); any value is taken. @return 0, NOT_INITIALIZED */
    EFI_STATUS (*SetDebugLevel)(_EFI_FRU_INTERFACE* This, unsigned int level);
    /** Stored, never called in this revision. @return 0 */
    EFI_STATUS (*SetDisplayCallback)(_EFI_FRU_INTERFACE* This, FRU_DISPLAY_CALLBACK callback);

    /* --- Loading one device, selecting a list and a FRU --------------------------------------- */

    /**
     * Loads the FRU of one device and appends it to the system list.
     * @return 0, NOT_INITIALIZED, MEMORY_ALLOCATION_ERROR, NOT_IPMI_FRU, CHECKSUM_ERROR, READ_FRU_ERROR,
     *         an INVALID_..._AREA code, OUT_OF_MEMORY, BUFFER_TOO_SMALL, or a transport value (bmclib.h)
     */
    EFI_STATUS(*LoadFruAtAddress)
    (_EFI_FRU_INTERFACE* This, FRU_TYPE type, UINT8 lun, UINT8 deviceAddress, UINT8 bus, UINT8 controller,
     UINT8 deviceId, UINT8 mbmcSizeData, UINT16 mbmcSizeAddress);
    /** Selects FRU_LIST_SYSTEM or FRU_LIST_FILE. @return 0, NOT_INITIALIZED, NOT_LOADED, NO_SUCH_FIELD */
    EFI_STATUS (*SelectList)(_EFI_FRU_INTERFACE* This, int list);
    /**
     * File list: both outputs are its count. System list: the locator count (0 in this revision), then
     * the list's count. @return 0, NOT_INITIALIZED, NOT_LOADED, NOT_SELECTED
     */
    EFI_STATUS (*GetNumberOfFrus)(_EFI_FRU_INTERFACE* This, FRU_OUT(unsigned int) first, FRU_OUT(unsigned int) second);
    /** Selects by index. @return 0, NOT_INITIALIZED, NOT_LOADED, NOT_SELECTED, NO_SUCH_FIELD */
    EFI_STATUS (*SelectFru)(_EFI_FRU_INTERFACE* This, unsigned int index);
    /** Selects the first FRU at an address; the two mBMC values take no part. @return as `SelectFru` */
    EFI_STATUS(*SelectFruByAddress)
    (_EFI_FRU_INTERFACE* This, FRU_TYPE type, UINT8 lun, UINT8 deviceAddress, UINT8 bus, UINT8 controller,
     UINT8 deviceId, UINT8 mbmcSizeData, UINT16 mbmcSizeAddress);
    /** The FRU's name; may yield null. @return 0, NOT_INITIALIZED, NOT_LOADED, NOT_SELECTED */
    EFI_STATUS (*GetFruName)(_EFI_FRU_INTERFACE* This, FRU_OUT(const WCHAR*) name);
    /** The FRU's address. @return as `GetFruName` */
    EFI_STATUS(*GetFruAddress)
    (_EFI_FRU_INTERFACE* This, FRU_OUT(FRU_TYPE) type, FRU_OUT(UINT8) lun, FRU_OUT(UINT8) deviceAddress,
     FRU_OUT(UINT8) bus, FRU_OUT(UINT8) controller, FRU_OUT(UINT8) deviceId, FRU_OUT(UINT8) mbmcSizeData,
     FRU_OUT(UINT16) mbmcSizeAddress);

    /* --- Areas and fields ---------------------------------------------------------------------- */

    /** Whether the FRU has the area. @return as `GetFruName`; so for the four that follow */
    EFI_STATUS (*HasInternalUseArea)(_EFI_FRU_INTERFACE* This, FRU_OUT(bool) present);
    EFI_STATUS (*HasBoardArea)(_EFI_FRU_INTERFACE* This, FRU_OUT(bool) present);
    EFI_STATUS (*HasProductArea)(_EFI_FRU_INTERFACE* This, FRU_OUT(bool) present);
    EFI_STATUS (*HasChassisArea)(_EFI_FRU_INTERFACE* This, FRU_OUT(bool) present);
    EFI_STATUS (*HasMultiRecordArea)(_EFI_FRU_INTERFACE* This, FRU_OUT(bool) present);
    /** Areas present, the common header not counted: 0 to 5. @return as `GetFruName` */
    EFI_STATUS (*GetNumberOfAreas)(_EFI_FRU_INTERFACE* This, FRU_OUT(unsigned int) count);
    /** Selects an area. An absent area is no failure: nothing is selected then.
     *  @return 0, NOT_INITIALIZED, NOT_LOADED, NOT_SELECTED, NO_SUCH_FIELD */
    EFI_STATUS (*SelectAreaEnum)(_EFI_FRU_INTERFACE* This, FRU_AREA area);
    /** Selects the n-th present area in the order internal use, chassis, board, product, multi-record.
     *  @return as `SelectAreaEnum` */
    EFI_STATUS (*SelectAreaInteger)(_EFI_FRU_INTERFACE* This, unsigned int n);
    /** The area's name; the common header has none (NO_SUCH_FIELD). @return as `SelectAreaEnum` */
    EFI_STATUS (*GetAreaName)(_EFI_FRU_INTERFACE* This, FRU_OUT(const WCHAR*) name);
    /** Fields of the area, custom fields included; 0 for the multi-record area. @return as `GetAreaName` */
    EFI_STATUS (*GetNumberOfFields)(_EFI_FRU_INTERFACE* This, FRU_OUT(unsigned int) count);
    /** Selects a field of the selected area. A selector of another area is an assertion, except in the
     *  chassis area. @return 0, NOT_INITIALIZED, NOT_LOADED, NOT_SELECTED, NO_SUCH_FIELD, UNSUPPORTED */
    EFI_STATUS (*SelectFieldEnum)(_EFI_FRU_INTERFACE* This, FRU_FIELD field);
    /** Selects by index; custom fields follow the fixed ones. @return as `SelectFieldEnum` */
    EFI_STATUS (*SelectFieldInteger)(_EFI_FRU_INTERFACE* This, unsigned int n);
    /** The field's title. @return 0, NOT_INITIALIZED, NOT_LOADED, NOT_SELECTED, NO_SUCH_FIELD */
    EFI_STATUS (*GetFieldTitle)(_EFI_FRU_INTERFACE* This, FRU_OUT(const WCHAR*) title);

    /* --- Values -------------------------------------------------------------------------------- */

    /** Bytes that a field of the chassis, board or product area may still grow by.
     *  @return 0, NOT_INITIALIZED, NOT_LOADED, NOT_SELECTED, UNSUPPORTED */
    EFI_STATUS (*GetMaxFieldSize)(_EFI_FRU_INTERFACE* This, FRU_OUT(unsigned int) size);
    /**
     * The field's text; may yield null. Custom field indices count from the last custom field backwards.
     * The chassis type's name is an assertion for types without one (0, 10 to 15, 23 and above).
     * @return 0, NOT_INITIALIZED, NOT_LOADED, NOT_SELECTED, NO_SUCH_FIELD (area without fields)
     */
    EFI_STATUS (*GetFieldStringValue)(_EFI_FRU_INTERFACE* This, FRU_OUT(const WCHAR*) value);
    /** The field's bytes. The first custom index is the first custom field, every later one the second.
     *  @return 0, NOT_INITIALIZED, NOT_LOADED, NOT_SELECTED, UNSUPPORTED, GET_FIELD_FAILED */
    EFI_STATUS (*GetFieldDataValue)(_EFI_FRU_INTERFACE* This, FRU_OUT(const UINT8*) data, FRU_OUT(unsigned int) length);
    /** Sets the field: at most 63 bytes, at most its length plus `GetMaxFieldSize`; `data` must not be null,
     *  not even for a length of 0. A custom field of one byte is stored with the type/length byte 0xC1, which
     *  ends the fields of an area wherever a custom field could stand (section 13): what reads the device or
     *  file later finds neither it nor the fields behind it, so give a custom field no value or two bytes.
     *  Custom field indices as for `GetFieldStringValue`. @return 0, NOT_INITIALIZED, NOT_LOADED, NOT_SELECTED,
     * UNSUPPORTED, SET_FIELD_FAILED (nothing changed) */
    EFI_STATUS (*SetFieldDataValue)(_EFI_FRU_INTERFACE* This, const UINT8* data, unsigned int length);
    /** Not supported: an assertion. */
    EFI_STATUS (*AddFruToSystemList)(_EFI_FRU_INTERFACE* This);
    /** Asks the BMC for the system properties. @return 0, NOT_INITIALIZED */
    EFI_STATUS (*LoadPropertiesFromSystem)(_EFI_FRU_INTERFACE* This);
    /** Always 3: IPMI version, FRUs, IPMI FRUs. @return 0, NOT_INITIALIZED, NOT_LOADED */
    EFI_STATUS (*GetNumberOfProperties)(_EFI_FRU_INTERFACE* This, FRU_OUT(unsigned int) count);
    /** Selects a property. @return 0, NOT_INITIALIZED, NOT_LOADED, NO_SUCH_FIELD */
    EFI_STATUS (*SelectProperty)(_EFI_FRU_INTERFACE* This, unsigned int index);
    /** The property's title. @return 0, NOT_INITIALIZED, NOT_LOADED, NOT_SELECTED */
    EFI_STATUS (*GetPropertyTitle)(_EFI_FRU_INTERFACE* This, FRU_OUT(const WCHAR*) title);
    /** The property's text; may yield null. @return as `GetPropertyTitle` */
    EFI_STATUS (*GetPropertyValue)(_EFI_FRU_INTERFACE* This, FRU_OUT(const WCHAR*) value);
    /**
     * Copies the bytes of the internal use or multi-record area, or of the common header (room exactly 8).
     * @param length in: room in `buffer`; out: bytes written, 0 on failure
     * @return 0, NOT_INITIALIZED (also a null `This` or `buffer`), NOT_LOADED, NOT_SELECTED,
     *         BUFFER_TOO_SMALL, UNSUPPORTED
     */
    EFI_STATUS (*GetAreaData)(_EFI_FRU_INTERFACE* This, UINT8* buffer, FRU_OUT(unsigned int) length);
    /** Replaces the internal use area (same length only) or the record chain of the multi-record area.
     *  @return 0, NOT_INITIALIZED (also a null `This` or `data`), NOT_LOADED, NOT_SELECTED, UNSUPPORTED,
     *  OUT_OF_MEMORY */
    EFI_STATUS (*SetAreaData)(_EFI_FRU_INTERFACE* This, const UINT8* data, unsigned int length);
    /** Copies a password of at most 16 bytes, ended by a zero byte, to gPwd. Longer ones overrun it;
     *  `length` is ignored. @return 0 */
    EFI_STATUS (*SetPwd)(_EFI_FRU_INTERFACE* This, const UINT8* password, unsigned int length);
    /** Bytes of the internal use or multi-record area.
     *  @return 0, NOT_INITIALIZED (also a null `This`), NOT_LOADED, NOT_SELECTED, UNSUPPORTED */
    EFI_STATUS (*GetAreaSize)(_EFI_FRU_INTERFACE* This, FRU_OUT(unsigned int) size);
    /** Whether the device holds a valid common header; loads nothing.
     *  @return 0, NOT_INITIALIZED, READ_FRU_ERROR, NOT_IPMI_FRU, CHECKSUM_ERROR, or a transport value */
    EFI_STATUS(*FindFruAtAddressAndChecksumHeader)
    (_EFI_FRU_INTERFACE* This, FRU_TYPE type, UINT8 lun, UINT8 deviceAddress, UINT8 bus, UINT8 controller,
     UINT8 deviceId);
    /** Room of the asset tag in the product area parsed last, whichever FRU that was; 0 before the first.
     *  @return 0, NOT_INITIALIZED, NOT_LOADED */
    EFI_STATUS (*GetAssetTagLength)(_EFI_FRU_INTERFACE* This, FRU_OUT(unsigned int) length);
};

#pragma GCC visibility push(default)
#ifdef __cplusplus
namespace Frudata_Public {
/** The table itself. */
extern _EFI_FRU_INTERFACE FRUDataInterface;
} // namespace Frudata_Public

extern "C" {
#endif

/** The table; can be called at any time, never null. */
_EFI_FRU_INTERFACE* GetFruDataInterface(void);

/** A27157C0-D80E-433A-AAD0-F1E1F7EBD6A9, for hosts that look interfaces up by GUID. */
extern const EFI_GUID g_FruDataGuid;
/** The password given to `SetPwd`: 16 bytes and a zero byte. */
extern UINT8 gPwd[17];

#ifdef __cplusplus
} // extern "C"
#endif
#pragma GCC visibility pop

#include "frudata/layout.h"

#endif

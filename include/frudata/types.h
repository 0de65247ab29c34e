/** frudata: scalar types, status codes and enumerations of the public interface. Usable from C and C++. @file */
#ifndef FRUDATA_TYPES_H
#define FRUDATA_TYPES_H

#include <stddef.h>
#include <stdint.h>
#ifndef __cplusplus
#include <stdbool.h>
#endif

typedef uint8_t UINT8;
typedef uint16_t UINT16;
typedef uint32_t UINT32;
/** 32 bits wide on every target: the interface is the same for 32- and 64-bit hosts. */
typedef uint32_t UINTN;
/** Wide text of the interface: 4 bytes a character on Linux. */
typedef wchar_t WCHAR;
/** Result of every operation: 0 for success, a FRU_STATUS_ code otherwise. */
typedef uint32_t EFI_STATUS;

/* An enumeration that admits every int value: an operation can refuse a wrong one. */
#ifdef __cplusplus
#define FRU_ENUM(name) enum name : int
#else
#define FRU_ENUM(name)                                                                                                 \
    typedef int name;                                                                                                  \
    enum
#endif

/** Status codes. A BMC transport value (see bmclib.h) can also come back from the device operations. */
#define FRU_STATUS_SUCCESS 0U
/** `Initialize` could not allocate its state or load the default string table. */
#define FRU_STATUS_INIT_FAILED 0xC0070001U
/** Operation before a successful `Initialize`; also a null `This` or buffer in the area-data operations. */
#define FRU_STATUS_NOT_INITIALIZED 0xC0070005U
/** The FRU text file cannot be opened, has a bad header value, a bad area block or ends early. */
#define FRU_STATUS_FILE_READ_ERROR 0xC0070007U
/** A section of the FRU text file cannot be appended. */
#define FRU_STATUS_FILE_WRITE_ERROR 0xC007000AU
/** Nothing loaded, or properties not loaded. */
#define FRU_STATUS_NOT_LOADED 0xC007000BU
/** No list, FRU, area or field selected where one is needed. */
#define FRU_STATUS_NOT_SELECTED 0xC007000CU
/** Index or enumeration value out of range; FRU not found by address; no such field. */
#define FRU_STATUS_NO_SUCH_FIELD 0xC007000DU
/** An allocation for an image, a name, a text or a record failed. */
#define FRU_STATUS_OUT_OF_MEMORY 0xC007000EU
/** Internal use area unreadable from the device. */
#define FRU_STATUS_INVALID_INTERNAL_AREA 0xC0070011U
/** Product area refused. */
#define FRU_STATUS_INVALID_PRODUCT_AREA 0xC0070012U
/** Board area unreadable or refused. */
#define FRU_STATUS_INVALID_BOARD_AREA 0xC0070013U
/** Chassis area unreadable or refused. */
#define FRU_STATUS_INVALID_CHASSIS_AREA 0xC0070014U
/** Multi-record area unreadable or its checksums wrong. */
#define FRU_STATUS_INVALID_MULTIREC_AREA 0xC0070015U
/** Common header checksum wrong. */
#define FRU_STATUS_CHECKSUM_ERROR 0xC0070016U
/** Reserve SDR Repository failed. */
#define FRU_STATUS_SDR_RESERVE_ERROR 0xC0070018U
/** Get SDR failed. */
#define FRU_STATUS_SDR_READ_ERROR 0xC0070019U
/** SDR record type not handled. */
#define FRU_STATUS_SDR_UNSUPPORTED 0xC007001AU
/** SDR version byte not 0x51. */
#define FRU_STATUS_SDR_BAD_VERSION 0xC007001BU
/** SDR length byte below 5. */
#define FRU_STATUS_SDR_BAD_HEADER_LENGTH 0xC007001CU
/** Locator record length does not fit its ID string. */
#define FRU_STATUS_SDR_BAD_RECORD_LENGTH 0xC007001DU
/** Reservation answer not 2 bytes. */
#define FRU_STATUS_SDR_BAD_RESERVE_LENGTH 0xC007001EU
/** String table file cannot be opened, read or cached. */
#define FRU_STATUS_STRING_RESOURCE_ERROR 0xC007001FU
/** String table object, FRU image (by address) or SDR arrays cannot be allocated. */
#define FRU_STATUS_MEMORY_ALLOCATION_ERROR 0xC0070020U
/** The FRU text file cannot be created. */
#define FRU_STATUS_FILE_CREATE_ERROR 0xC0070023U
/** Common header format version is not 1. */
#define FRU_STATUS_NOT_IPMI_FRU 0xC0070025U
/** The area could not return the field. */
#define FRU_STATUS_GET_FIELD_FAILED 0xC0070026U
/** The area refused the value. */
#define FRU_STATUS_SET_FIELD_FAILED 0xC0070027U
/** Reading FRU data from the device failed. */
#define FRU_STATUS_READ_FRU_ERROR 0xC0070028U
/** Writing FRU data to the device failed. */
#define FRU_STATUS_WRITE_FRU_ERROR 0xC0070029U
/** Text file area block without its tag (reaches the caller as FRU_STATUS_FILE_READ_ERROR). */
#define FRU_STATUS_MISSING_AREA_TAG 0xC007002AU
/** Text file area block too long (reaches the caller as FRU_STATUS_FILE_READ_ERROR). */
#define FRU_STATUS_AREA_TOO_BIG 0xC007002BU
/** Bad character in a text file area block (reaches the caller as FRU_STATUS_FILE_READ_ERROR). */
#define FRU_STATUS_UNEXPECTED_CHARACTER 0xC007002CU
/** An area could not be written back to its device (reaches the caller as FRU_STATUS_WRITE_FRU_ERROR). */
#define FRU_STATUS_WRITE_SYSTEM_ERROR 0xC007002EU
/** Caller's buffer too small or of the wrong size; list selection or list insertion failed. */
#define FRU_STATUS_BUFFER_TOO_SMALL 0xC007002FU
/** The selected area does not support the operation. */
#define FRU_STATUS_UNSUPPORTED 0xC0070030U
/** mBMC flash lock failed (coded, not reachable). */
#define FRU_STATUS_LOCK_FLASH_ERROR 0xC0070031U

/** How a FRU device is reached. The letter O in AT24CO2 belongs to the name. */
FRU_ENUM(FRU_TYPE){
    FRU_TYPE_AT24CO2 = 0,   /**< serial EEPROM, Master Write-Read with a two-byte offset */
    FRU_TYPE_DS1624S = 1,   /**< thermometer EEPROM, Master Write-Read with its access command 0x17 */
    FRU_TYPE_IMBDEVICE = 2, /**< FRU inventory device, Read/Write FRU Data */
    FRU_TYPE_MBMC_FRU = 3,  /**< as IMBDEVICE on platform 3 (FRU_PLATFORM_MBMC), else as AT24CO2 */
    FRU_TYPE_NONE = 4       /**< no address known: every transfer fails */
};

/** The one platform code of `Initialize` with a meaning: a server whose FRUs sit behind a mini-BMC. */
#define FRU_PLATFORM_MBMC 3

/** Which list of FRUs the cursor walks. */
enum {
    FRU_LIST_NONE = 0,
    FRU_LIST_SYSTEM = 1, /**< FRUs loaded from devices */
    FRU_LIST_FILE = 2    /**< FRUs loaded from FRU text files */
};

/** Area selector. */
FRU_ENUM(FRU_AREA){FRU_AREA_NONE = 0,  FRU_AREA_COMMON_HEADER = 1, FRU_AREA_INTERNAL_USE = 2, FRU_AREA_CHASSIS = 3,
                   FRU_AREA_BOARD = 4, FRU_AREA_PRODUCT = 5,       FRU_AREA_MULTIRECORD = 6};

/** Field selector. Custom fields have none; select them by index. */
FRU_ENUM(FRU_FIELD){FRU_FIELD_INTERNAL_USE_DATA = 1,
                    FRU_FIELD_CHASSIS_TYPE = 2,
                    FRU_FIELD_CHASSIS_PART_NUMBER = 3,
                    FRU_FIELD_CHASSIS_SERIAL_NUMBER = 4,
                    FRU_FIELD_BOARD_MFG_DATE_TIME = 5,
                    FRU_FIELD_BOARD_MANUFACTURER = 6,
                    FRU_FIELD_BOARD_PRODUCT_NAME = 7,
                    FRU_FIELD_BOARD_SERIAL_NUMBER = 8,
                    FRU_FIELD_BOARD_PART_NUMBER = 9,
                    FRU_FIELD_BOARD_FILE_ID = 10,
                    FRU_FIELD_PRODUCT_MANUFACTURER_NAME = 11,
                    FRU_FIELD_PRODUCT_NAME = 12,
                    FRU_FIELD_PRODUCT_PART_NUMBER = 13,
                    FRU_FIELD_PRODUCT_VERSION = 14,
                    FRU_FIELD_PRODUCT_SERIAL_NUMBER = 15,
                    FRU_FIELD_PRODUCT_ASSET_TAG = 16,
                    FRU_FIELD_PRODUCT_FILE_ID = 17};

/** The event that a progress callback reports. */
FRU_ENUM(PROGRESS_CALLBACK_TYPE){
    PROGRESS_CALLBACK_LOAD = 0, /**< a configuration was loaded; the numbers count FRUs and locators */
    PROGRESS_CALLBACK_WRITE = 1 /**< a step of writing a FRU to its device; the two numbers are 0 */
};

/**
 * Progress callback. `message` is valid during the call only. The result is ignored.
 * It may select and read. It must not load, set, commit, start or end the library, and must not throw.
 */
typedef unsigned int (*FRU_PROGRESS_CALLBACK)(PROGRESS_CALLBACK_TYPE type, const WCHAR* message, unsigned int current,
                                              unsigned int total);
/** Display callback: stored by the library, never called by this interface revision. */
typedef void (*FRU_DISPLAY_CALLBACK)(const WCHAR* message);

/** An interface identifier in EFI byte order: the first three members little-endian. */
typedef struct _EFI_GUID {
    UINT32 data1;
    UINT16 data2;
    UINT16 data3;
    UINT8 data4[8];
} EFI_GUID;

#endif

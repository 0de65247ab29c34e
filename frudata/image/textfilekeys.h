// Words of the FRU text file, shared by its reader and its writer.
#pragma once

namespace Frudata_Private {

constexpr char FRU_LF_NAME[] = "_LF_NAME";
constexpr char FRU_LF_VERSION[] = "_LF_VERSION";
constexpr char FRU_LF_FMT_VER[] = "_LF_FMT_VER";
// Compatibility: the spelling of the name; the word in the file is right.
constexpr char FRU_IMPI_VERSION[] = "_IPMI_VERSION";
constexpr char FRU_FRU[] = "_FRU";
constexpr char FRU_OPEN_PAREN[] = "(";
constexpr char FRU_CLOSE_PAREN[] = ")";
constexpr char FRU_SINGLE_QUOTE = '\'';
constexpr char FRU_COMMENT[] = "//";
constexpr char FRU_FRU_TITLE[] = "_FRU_TITLE";
constexpr char FRU_START_ADDR[] = "_START_ADDR";
constexpr char FRU_DATA_LEN[] = "_DATA_LEN";
constexpr char FRU_NVS_TYPE[] = "_NVS_TYPE";
/// The letter O belongs to the name.
constexpr char FRU_NVS_TYPE_AT24CO2[] = "AT24CO2";
constexpr char FRU_NVS_TYPE_DS1624S[] = "DS1624S";
constexpr char FRU_NVS_TYPE_IMBDEVICE[] = "IMBDEVICE";
constexpr char FRU_NVS_TYPE_MBMC[] = "MBMC_FRU";
constexpr char FRU_DEV_ID[] = "_DEV_ID";
constexpr char FRU_DEV_CNTR[] = "_DEV_CNTR";
constexpr char FRU_NVS_LUN[] = "_NVS_LUN";
constexpr char FRU_DEV_BUS[] = "_DEV_BUS";
constexpr char FRU_DEV_ADDRESS[] = "_DEV_ADDRESS";
constexpr char FRU_MBMC_SIZE_ADDRS[] = "_MBMC_SIZE_ADRS";
constexpr char FRU_MBMC_SIZE_DATA[] = "_MBMC_SIZE_DATA";
/// The start of every area's tag.
constexpr char FRU_AREA_TAG_PREFIX[] = "_SEE_";
constexpr char FRU_COMMON[] = "_SEE_COMMON";
constexpr char FRU_INTERNAL[] = "_SEE_INTERNAL";
constexpr char FRU_CHASSIS[] = "_SEE_CHASSIS";
constexpr char FRU_BOARD[] = "_SEE_BOARD";
constexpr char FRU_PRODUCT[] = "_SEE_PRODUCT";
constexpr char FRU_MULTIREC[] = "_SEE_MULTIREC";

} // namespace Frudata_Private

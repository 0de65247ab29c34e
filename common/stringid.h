// Numbers of the localised texts, and the arguments that callers pass for their placeholders.
#pragma once

// X(number, name, arguments): one character per placeholder of the text, in order:
//   s  narrow text, written %s        (file names)
//   w  wide text, written %ls         (titles, area names, FRU identifiers)
//   u  32-bit number, written %u, %d, %i, %x or %X with an optional width
#define FRU_STRING_IDS(X)                                                                                              \
    X(3, AREA_COMMON_HEADER, "")                                                                                       \
    X(4, AREA_CHASSIS, "")                                                                                             \
    X(5, AREA_BOARD, "")                                                                                               \
    X(6, AREA_PRODUCT, "")                                                                                             \
    X(7, AREA_INTERNAL_USE, "")                                                                                        \
    X(8, AREA_MULTIRECORD, "")                                                                                         \
    X(9, INTERNAL_USE_DATA, "")                                                                                        \
    X(10, CHASSIS_TYPE, "")                                                                                            \
    X(11, CHASSIS_PART_NUMBER, "")                                                                                     \
    X(12, CHASSIS_SERIAL_NUMBER, "")                                                                                   \
    X(13, CHASSIS_CUSTOM_FIELD, "")                                                                                    \
    X(14, BOARD_MFG_DATE_TIME, "")                                                                                     \
    X(15, BOARD_MANUFACTURER, "")                                                                                      \
    X(16, BOARD_PRODUCT_NAME, "")                                                                                      \
    X(17, BOARD_SERIAL_NUMBER, "")                                                                                     \
    X(18, BOARD_PART_NUMBER, "")                                                                                       \
    X(19, BOARD_FILE_ID, "")                                                                                           \
    X(20, BOARD_CUSTOM_FIELD, "")                                                                                      \
    X(21, PRODUCT_MANUFACTURER_NAME, "")                                                                               \
    X(22, PRODUCT_NAME, "")                                                                                            \
    X(23, PRODUCT_PART_NUMBER, "")                                                                                     \
    X(24, PRODUCT_VERSION, "")                                                                                         \
    X(25, PRODUCT_SERIAL_NUMBER, "")                                                                                   \
    X(26, PRODUCT_ASSET_TAG, "")                                                                                       \
    X(27, PRODUCT_FILE_ID, "")                                                                                         \
    X(28, PRODUCT_CUSTOM_FIELD, "")                                                                                    \
    X(29, PROPERTY_IPMI_VERSION, "")                                                                                   \
    X(30, PROPERTY_NUMBER_OF_FRUS, "")                                                                                 \
    X(31, PROPERTY_NUMBER_OF_IPMI_FRUS, "")                                                                            \
    X(32, IPMI_VERSION_LATER, "")                                                                                      \
    X(33, IPMI_VERSION_FIRST, "")                                                                                      \
    X(34, INVALID_TIMESTAMP, "")                                                                                       \
    X(35, DATE_TIME_FORMAT, "uuuuuu")                                                                                  \
    X(36, CHASSIS_TYPE_1, "")                                                                                          \
    X(37, CHASSIS_TYPE_2, "")                                                                                          \
    X(38, CHASSIS_TYPE_3, "")                                                                                          \
    X(39, CHASSIS_TYPE_4, "")                                                                                          \
    X(40, CHASSIS_TYPE_5, "")                                                                                          \
    X(41, CHASSIS_TYPE_6, "")                                                                                          \
    X(42, CHASSIS_TYPE_7, "")                                                                                          \
    X(43, CHASSIS_TYPE_8, "")                                                                                          \
    X(44, CHASSIS_TYPE_9, "")                                                                                          \
    X(51, CHASSIS_TYPE_16, "")                                                                                         \
    X(52, CHASSIS_TYPE_17, "")                                                                                         \
    X(53, CHASSIS_TYPE_18, "")                                                                                         \
    X(54, CHASSIS_TYPE_19, "")                                                                                         \
    X(55, CHASSIS_TYPE_20, "")                                                                                         \
    X(56, CHASSIS_TYPE_21, "")                                                                                         \
    X(57, CHASSIS_TYPE_22, "")                                                                                         \
    X(58, CHASSIS_TYPE_23, "")                                                                                         \
    X(63, PROGRESS_LOADED, "uu")                                                                                       \
    X(64, PROGRESS_WRITING_FRU, "w")                                                                                   \
    X(66, PROGRESS_INTERNAL_USE, "")                                                                                   \
    X(67, PROGRESS_CHASSIS, "")                                                                                        \
    X(68, PROGRESS_BOARD, "")                                                                                          \
    X(69, PROGRESS_PRODUCT, "")                                                                                        \
    X(70, PROGRESS_MULTIRECORD, "")                                                                                    \
    X(71, KEY_FRU_TITLE, "")                                                                                           \
    X(72, KEY_LF_NAME, "")                                                                                             \
    X(73, KEY_LF_VERSION, "")                                                                                          \
    X(74, KEY_LF_FMT_VER, "")                                                                                          \
    X(75, KEY_IPMI_VERSION, "")                                                                                        \
    X(76, KEY_DATA_LEN, "")                                                                                            \
    X(77, KEY_NVS_TYPE, "")                                                                                            \
    X(78, KEY_DEV_ID, "")                                                                                              \
    X(79, KEY_DEV_CNTR, "")                                                                                            \
    X(80, KEY_NVS_LUN, "")                                                                                             \
    X(81, KEY_DEV_BUS, "")                                                                                             \
    X(82, KEY_DEV_ADDRESS, "")                                                                                         \
    X(89, FILE_NOT_OPENED, "s")                                                                                        \
    X(90, FILE_BAD_VALUE, "ws")                                                                                        \
    X(94, FILE_MISSING_AREA_TAG, "ws")                                                                                 \
    X(95, FILE_AREA_TOO_BIG, "ws")                                                                                     \
    X(96, FILE_UNEXPECTED_CHARACTER, "ws")                                                                             \
    X(97, FILE_AREA_INVALID, "ws")                                                                                     \
    X(98, FILE_UNEXPECTED_END, "s")                                                                                    \
    X(100, FILE_NOT_WRITTEN, "s")                                                                                      \
    X(101, FRU_NOT_FOUND, "")                                                                                          \
    X(102, OUT_OF_MEMORY, "")                                                                                          \
    X(103, NOT_IPMI_FRU, "")                                                                                           \
    X(104, INVALID_INTERNAL_AREA, "w")                                                                                 \
    X(106, INVALID_BOARD_AREA, "w")                                                                                    \
    X(107, INVALID_CHASSIS_AREA, "w")                                                                                  \
    X(108, INVALID_MULTIREC_AREA, "w")                                                                                 \
    X(109, INVALID_HEADER, "w")                                                                                        \
    X(113, DEVICE_NOT_WRITTEN, "w")                                                                                    \
    X(123, DEVICE_NOT_READ, "")                                                                                        \
    X(125, UNEXPECTED, "")                                                                                             \
    X(126, UNSUPPORTED, "")                                                                                            \
    X(128, CHASSIS_NOT_READ, "")                                                                                       \
    X(129, PRODUCT_NOT_READ, "")                                                                                       \
    X(130, BOARD_NOT_READ, "")                                                                                         \
    X(131, CHASSIS_NOT_SET, "")                                                                                        \
    X(132, PRODUCT_NOT_SET, "")                                                                                        \
    X(133, BOARD_NOT_SET, "")                                                                                          \
    X(134, FRU_IDENTIFIER, "uuuu")                                                                                     \
    X(135, NO_SUCH_FIELD, "")                                                                                          \
    X(137, VALUE_TOO_LONG, "w")                                                                                        \
    X(138, INVALID_MFG_DATE_TIME, "")

/// Number of a localised text.
enum STRING_ID : unsigned int {
#define FRU_STRING_ENUMERATOR(number, name, arguments) STRING_##name = (number),
    FRU_STRING_IDS(FRU_STRING_ENUMERATOR)
#undef FRU_STRING_ENUMERATOR
};

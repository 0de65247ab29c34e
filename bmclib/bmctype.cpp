// The kind of BMC, from its Get Device ID answer (IPMI 2.0, section 20.1).
#include "bmclib/messagetransport.h"

#include <algorithm>
#include <iterator>

namespace {

using namespace Frudata_Private;

constexpr int DEVICE_ID_PRODUCT = 9;

constexpr UINT8 IPMI_VERSION_BYTE_15 = 0x51;
constexpr UINT8 IPMI_VERSION_BYTE_20 = 0x02;

constexpr UINT16 MBMC_PRODUCTS[] = {0x4311, 0x4312, 0x4315};

// Asked once, then remembered; a failed query clears the type.
UINT32 g_bmcType = BMC_TYPE_UNKNOWN;
UINT32 g_ipmiVersion = 0;

int GetDeviceId(BMC_MESSAGE& response) {
    BMC_MESSAGE request;
    AddressToBmc(request, COMMAND_GET_DEVICE_ID, 0);
    return ProcessMessage(&request, &response, REQUEST_TIMEOUT);
}

// Unreachable: `knownType` is always BMC_TYPE_UNKNOWN here; kept by contract.
UINT32 Classify(UINT16 productId, UINT32 knownType) {
    const bool isMbmc =
        std::find(std::begin(MBMC_PRODUCTS), std::end(MBMC_PRODUCTS), productId) != std::end(MBMC_PRODUCTS);
    if (!isMbmc)
        return BMC_TYPE_BMC;
    return knownType == BMC_TYPE_MBMC_EXT ? BMC_TYPE_MBMC_EXT : BMC_TYPE_MBMC;
}

UINT32 VersionCode(UINT8 versionByte, UINT32 knownVersion) {
    switch (versionByte) {
    case IPMI_VERSION_BYTE_15:
        return IPMI_VERSION_15;
    case IPMI_VERSION_BYTE_20:
        return IPMI_VERSION_20;
    default:
        return knownVersion;
    }
}

int AskTypeAndVersion() {
    GetBmcType(&g_bmcType);
    if (g_bmcType == BMC_TYPE_UNKNOWN)
        return BMCLIB_ERR_BMC_TYPE;
    BMC_MESSAGE response;
    const int status = GetDeviceId(response);
    if (status != 0)
        g_bmcType = BMC_TYPE_UNKNOWN;
    else
        g_ipmiVersion = VersionCode(response.data[DEVICE_ID_IPMI_VERSION], g_ipmiVersion);
    return status;
}

} // namespace

int GetBmcType(UINT32* type) {
    BMC_MESSAGE response;
    *type = BMC_TYPE_UNKNOWN;
    const int status = GetDeviceId(response);
    if (status == 0) {
        const int productId = response.data[DEVICE_ID_PRODUCT + 1] << 8 | response.data[DEVICE_ID_PRODUCT];
        *type = Classify(static_cast<UINT16>(productId), *type);
    }
    return status;
}

int GetBmcTypeVersion(UINT32* type, UINT32* version) {
    const int status = g_bmcType == BMC_TYPE_UNKNOWN ? AskTypeAndVersion() : 0;
    if (status == 0) {
        *type = g_bmcType;
        *version = g_ipmiVersion;
    }
    return status;
}

// The one place that chooses the way of a request to the BMC:
//
//   the discovery found      the host selected          data bytes   way
//   IMB driver               whatever it selected       any          IMB driver
//   interface without driver whatever it selected       any          none
//   otherwise                IPMI_INTERFACE_KCS         any          KCS
//                            IPMI_INTERFACE_USB         any          session library
//                            IPMI_INTERFACE_USB_LARGE   up to 128    KCS
//                                                       from 129     session library, KCS where it fails
//
// A request that a host gives to SendTimedImbpRequest_t itself takes the last four rows, whatever was found.
#include "bmclib/accesspath.h"

namespace Frudata_Private {

int g_Mbmcsupport = ACCESS_OWN;

namespace {

constexpr UINT32 LARGE_REQUEST = 128;

_IPMI_INTERFACE_TYPE eInterface = IPMI_INTERFACE_KCS;
// 1 while a session of the session library is open.
int g_UseUSB = 0;

} // namespace

WAY ChooseWay(int accessPath, UINT32 dataLength) {
    if (accessPath != ACCESS_OWN)
        return accessPath == ACCESS_IMB ? WAY_IMB_DRIVER : WAY_NONE;
    if (g_UseUSB == 1 && eInterface == IPMI_INTERFACE_USB)
        return WAY_SESSION;
    if (g_UseUSB == 1 && eInterface == IPMI_INTERFACE_USB_LARGE && dataLength > LARGE_REQUEST)
        return WAY_SESSION_OR_KCS;
    return WAY_KCS;
}

} // namespace Frudata_Private

using namespace Frudata_Private;

bool SelectIPMIInterface(_IPMI_INTERFACE_TYPE type) {
    switch (type) {
    case IPMI_INTERFACE_KCS:
        if (g_UseUSB == 1)
            UsbLibDeinitialize();
        g_UseUSB = 0;
        break;
    case IPMI_INTERFACE_USB:
    case IPMI_INTERFACE_USB_LARGE:
        // Select KCS before changing the session interface.
        if (g_UseUSB == 1 || UsbLibInitialize() == 0)
            return false;
        g_UseUSB = 1;
        break;
    default:
        return false;
    }
    eInterface = type;
    return true;
}

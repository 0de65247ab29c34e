#include "bmclib/bmcstate.h"

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
        // From one session interface to the other goes only by way of KCS.
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

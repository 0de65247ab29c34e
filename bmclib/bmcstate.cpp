#include "bmclib/bmcstate.h"

namespace Frudata_Private {

int g_Mbmcsupport = ACCESS_OWN_KCS;
_IPMI_INTERFACE_TYPE eInterface = IPMI_INTERFACE_KCS;
int g_UseUSB = 0;

} // namespace Frudata_Private

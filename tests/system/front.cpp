// The way to the BMC of one executable.
#include "tests/system/support.h"

const Frudata_Sim::FRONT Frudata_Tests::g_front = Frudata_Sim::FRONT::HOST_FRONT;

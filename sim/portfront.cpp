// Port access of the host, which replaces the library's own.
#include "sim/fronts.h"

#include "frudata/bmclib.h"

UINT8 inb(UINT16 port) {
    Frudata_Sim::CKcsModel* const kcs = Frudata_Sim::CurrentKcs();
    return kcs ? kcs->ReadPort(port) : UINT8{0xFF};
}

void outb(UINT8 value, UINT16 port) {
    try {
        if (Frudata_Sim::CKcsModel* const kcs = Frudata_Sim::CurrentKcs())
            kcs->WritePort(value, port);
    } catch (...) {
        Frudata_Sim::CurrentKcs()->EnterError();
    }
}

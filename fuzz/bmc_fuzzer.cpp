// A whole conversation with a BMC: input is the address of a device, the size of its image, the image, the
// changes made to it, and the faults of the BMC.
#include "fuzz/support.h"

namespace {

using namespace Frudata_Fuzz;
using namespace Frudata_Sim;

constexpr UINT8 REPAIR = 0x80;
constexpr UINT8 BRIDGED = 0x40;
constexpr UINT8 CONTROLLER = 0x20;
constexpr std::size_t EDIT_SIZE = 32;

void Converse(_EFI_FRU_INTERFACE* table, CInput& input) {
    const UINT8 control = input.Byte();
    const auto type = static_cast<FRU_TYPE>(control & 7);
    const auto controller = static_cast<UINT8>(control & CONTROLLER ? 0xC0 : BMC_ADDRESS);
    const auto bus = static_cast<UINT8>(control & BRIDGED ? 0 : 0xFF);
    BYTES image = input.Take(input.Byte() * 2U);
    if (control & REPAIR)
        RepairImage(image);
    const BYTES edits = input.Take(EDIT_SIZE);
    CInput editInput(edits.data(), edits.size());

    CFaultyBmc bmc(input);
    if (type == FRU_TYPE_AT24CO2 || type == FRU_TYPE_DS1624S)
        bmc.Bmc().AddEeprom(bus, 0xA0, static_cast<EEPROM_KIND>(type), std::move(image));
    else if (controller != BMC_ADDRESS)
        bmc.Bmc().AddController(0, controller).AddFruDevice(0, std::move(image));
    else if (control & BRIDGED)
        bmc.Bmc().AddController(0, 0xA0).AddFruDevice(0, std::move(image));
    else
        bmc.Bmc().AddFruDevice(0, std::move(image));
    table->FindFruAtAddressAndChecksumHeader(table, type, 0, 0xA0, bus, controller, 0);
    table->LoadPropertiesFromSystem(table);
    if (table->LoadFruAtAddress(table, type, 0, 0xA0, bus, controller, 0, 0, 0) != 0)
        return;
    table->SelectList(table, FRU_LIST_SYSTEM);
    table->SelectFru(table, 0);
    UseSelectedFru(table, editInput);
    table->CommitConfigurationToSystem(table);
    table->LoadConfigurationFromSystem(table);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const UINT8* data, std::size_t size) {
    return Run(data, size, Converse);
}

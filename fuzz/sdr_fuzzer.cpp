// SDR records, alone and as a repository: input is up to three records, each behind a size byte, and the
// faults of their BMC.
#include "frudata/sdrscan.h"
#include "frudata/system/sdrrecords.h"
#include "fuzz/support.h"

extern "C" int LLVMFuzzerTestOneInput(const UINT8* data, std::size_t size) {
    using namespace Frudata_Fuzz;
    using namespace Frudata_Private;
    return Run(data, size, [](_EFI_FRU_INTERFACE*, CInput& input) {
        const BYTES repository[] = {input.Take(input.Byte()), input.Take(input.Byte()), input.Take(input.Byte())};
        CFaultyBmc bmc(input);
        for (const BYTES& record : repository) {
            if (record.size() >= SDR_HEADER_LENGTH)
                bmc.Bmc().AddSdr(record);
            TYPE11V15 fruLocator;
            TYPE12V15 controllerLocator;
            DecodeSDRType11V15(record, fruLocator);
            DecodeSDRType12V15(record, controllerLocator);
        }
        OrderedList<FRU_LOCATOR*> list;
        OrderedList<FRU_LOCATOR*>* locators = &list;
        ScanSystemForFruLocators(locators);
        while (FRU_LOCATOR* locator = list.First())
            const std::unique_ptr<FRU_LOCATOR> removed(list.Remove(locator));
        // The records of a scan stay until the next one.
        Frudata_Sim::SetCurrentBmc(nullptr);
        ScanSystemForFruLocators(locators);
    });
}

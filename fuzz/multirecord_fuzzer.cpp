// The multi-record area: input is two areas, one set over the other.
#include "fuzz/support.h"

extern "C" int LLVMFuzzerTestOneInput(const UINT8* data, std::size_t size) {
    using namespace Frudata_Fuzz;
    return Run(data, size, [&](_EFI_FRU_INTERFACE* table, CInput& input) {
        const UINT8 header[] = {1, 0, 0, 0, 0, 1, 0, 0};
        auto owner = std::make_unique<Frudata_Private::CFru>();
        Frudata_Private::CFru& fru = *owner;
        fru.DecodeHeader(header);
        SelectNewFru(std::move(owner));
        const BYTES first = input.Take(input.Byte());
        const BYTES second = input.Rest();
        table->SelectAreaEnum(table, FRU_AREA_MULTIRECORD);
        for (const BYTES& area : {first, second}) {
            table->SetAreaData(table, area.data(), static_cast<unsigned int>(area.size()));
            fru.CheckMultiRecCheckSum();
            unsigned int room = 0;
            table->GetAreaSize(table, room);
            for (const unsigned int capacity : {room / 2, room, room + 260}) {
                const std::unique_ptr<UINT8[]> buffer(new UINT8[capacity + 1]);
                unsigned int length = capacity;
                table->GetAreaData(table, buffer.get(), length);
            }
        }
        CInput edits(data, size);
        UseSelectedFru(table, edits);
        SaveAndReload(table, edits);
    });
}

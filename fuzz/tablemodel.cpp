// The frame around each call: its checks, the cursor, and what must not change.
#include "fuzz/tablemodel.h"

namespace Frudata_Fuzz {

using namespace Frudata_Private;

namespace {

/// FNV-1a.
struct CDigest {
    std::uint64_t value = 0xCBF29CE484222325;

    void Add(const UINT8* bytes, std::size_t count) {
        for (std::size_t index = 0; index < count; ++index)
            value = (value ^ bytes[index]) * 0x100000001B3;
    }
    void Add(const CInfoArea& area) {
        Add(area.GetHeader(), area.GetHeaderSize());
        area.ForEachField([this](UINT8 typeLength, const UINT8* data) {
            Add(&typeLength, 1);
            Add(data, typeLength & MAX_FIELD_LENGTH);
        });
        const UINT8 rest[] = {area.GetChecksum(), area.IsModified()};
        Add(rest, sizeof rest);
    }
    void Add(CFru& fru) {
        static UINT8 records[1 << 17];
        Add(fru.GetFRUHeader().GetData(), CFruHeader::FRU_HEADER_LENGTH);
        Add(fru.GetInternalUseArea().GetData(), fru.GetInternalUseArea().GetLength());
        for (const FRU_AREA area : {FRU_AREA_CHASSIS, FRU_AREA_BOARD, FRU_AREA_PRODUCT})
            Add(*fru.GetInfoArea(area));
        UINTN length = sizeof records;
        Require(fru.SerializeMultiRecArea(records, length) == 0);
        Add(records, length);
    }
};

std::uint64_t DigestFrus() {
    CDigest digest;
    if (!g_FruData)
        return digest.value;
    const UINT32 level = LIBDBG_DEBUG_LEVEL;
    SetLibDebugLevel(0);
    for (const OrderedList<CFru*>* list : {g_FruData->m_pFileList.get(), g_FruData->m_pSystemList.get()})
        for (CFru* fru = list->First(); fru; fru = list->Next(fru))
            digest.Add(*fru);
    SetLibDebugLevel(level);
    return digest.value;
}

/// All 50, by their number.
std::vector<ROW> AllRows() {
    std::vector<ROW> all(50);
    for (const std::span<const ROW> rows : {WholeRows(), CursorRows(), ValueRows()})
        for (const ROW& row : rows)
            all.at(row.number) = row;
    Require(std::all_of(all.begin(), all.end(), [](const ROW& row) { return row.call != nullptr; }));
    return all;
}

} // namespace

HOST::HOST(TABLE* hostTable, CInput& hostInput, BYTES hostText)
    : table(hostTable), input(hostInput), text(std::move(hostText)), digest(DigestFrus()) {}

EFI_STATUS CURSOR::Check(FUZZ_NEED need) const {
    if (need != NEEDS_NOTHING && start != UP)
        return FRU_STATUS_NOT_INITIALIZED;
    if (need >= NEEDS_PROPERTIES && !hasProperties)
        return FRU_STATUS_NOT_LOADED;
    if (need >= NEEDS_PROPERTIES)
        return need == NEEDS_PROPERTY && property == CURSOR_NONE ? FRU_STATUS_NOT_SELECTED : FRU_STATUS_SUCCESS;
    if (need >= NEEDS_LOAD && !isLoaded)
        return FRU_STATUS_NOT_LOADED;
    const bool isSelected = (need < NEEDS_LIST || list != FRU_LIST_NONE) && (need < NEEDS_FRU || fru != CURSOR_NONE) &&
                            (need < NEEDS_AREA || area != FRU_AREA_NONE) &&
                            (need < NEEDS_FIELD || field != CURSOR_NONE);
    return isSelected ? FRU_STATUS_SUCCESS : FRU_STATUS_NOT_SELECTED;
}

FRU_PLACE NextPlace(CInput& input) {
    const UINT8 number = input.Byte();
    FRU_PLACE place = PLACES[number % std::size(PLACES)];
    if (number & 0x80)
        place = {static_cast<FRU_TYPE>(number & 7), input.Byte(), input.Byte(), input.Byte(), input.Byte(), 1};
    return place;
}

void HOST::CheckCursor() const {
    if (cursor.start != CURSOR::UP)
        return;
    const CFruData& state = *g_FruData;
    Require(state.m_fLoaded == cursor.isLoaded && !state.m_fModified);
    Require(state.m_fPropertiesLoaded == cursor.hasProperties && state.m_nProperty == cursor.property);
    Require(state.m_listType == cursor.list && state.m_nFru == cursor.fru);
    Require(state.m_area == cursor.area && state.m_nField == cursor.field);
    Require(state.m_pFileList->Count() == cursor.frus[FRU_LIST_FILE]);
    Require(state.m_pSystemList->Count() == cursor.frus[FRU_LIST_SYSTEM]);
}

void HOST::CallNext() {
    static const std::vector<ROW> rows = AllRows();
    const ROW& row = rows[input.Byte() % rows.size()];
    required = cursor.Check(row.need);
    const ANSWER answer = row.call(*this);
    const bool isAllowed = IsReady() ? answer.isAllowed : answer.status == required;
    if (!isAllowed)
        std::fprintf(stderr, "operation %u answers %08X, not %08X\n", row.number + 1, answer.status, required);
    Require(isAllowed);
    const std::uint64_t before = std::exchange(digest, DigestFrus());
    Require((row.changesFrus && (answer.status == 0 || row.changesOnFailure)) || digest == before);
    CheckCursor();
}

} // namespace Frudata_Fuzz

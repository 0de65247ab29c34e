#include "frudata/frudatastate.h"

#include "common/assertion.h"

#include <new>

namespace Frudata_Private {

bool g_fInitialized = false;
std::unique_ptr<CFruData> g_FruData;

namespace {

template <typename T> void DestroyElements(OrderedList<T*>* list) {
    while (list && list->First())
        const std::unique_ptr<T> element(list->Remove(list->First()));
}

} // namespace

CFruData::CFruData()
    : m_pFileList(new (std::nothrow) OrderedList<CFru*>), m_pSystemList(new (std::nothrow) OrderedList<CFru*>),
      m_pLocatorList(new (std::nothrow) OrderedList<FRU_LOCATOR*>) {}

CFruData::~CFruData() {
    DestroyElements(m_pFileList.get());
    DestroyElements(m_pSystemList.get());
    DestroyElements(m_pLocatorList.get());
}

void CFruData::ClearArea() {
    m_area = FRU_AREA_NONE;
    m_nField = CURSOR_NONE;
}

void CFruData::ClearFru() {
    m_nFru = CURSOR_NONE;
    ClearArea();
}

CFru& CFruData::SelectedFru() const {
    CFru* pFru = (*m_pCurrentList)[m_nFru];
    Assert(pFru != nullptr, "frudata.cpp", "pFru");
    return *pFru;
}

} // namespace Frudata_Private

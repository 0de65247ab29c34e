#include "frudata/frudatastate.h"

#include "common/assertion.h"

#include <new>

namespace Frudata_Private {

START_STATE g_startState = START_DOWN;
std::unique_ptr<CFruData> g_FruData;

namespace {

template <typename T> void DestroyElements(OrderedList<T*>* list) {
    while (T* const first = list ? list->First() : nullptr) {
        list->Remove(first);
        const std::unique_ptr<T> element(first);
    }
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
    // Indexing a list costs the square of the index. Lists grow only at their end, so an earlier result stays valid.
    if (m_pFoundIn != m_pCurrentList || m_nFound != m_nFru) {
        m_pFound = (*m_pCurrentList)[m_nFru];
        m_pFoundIn = m_pCurrentList;
        m_nFound = m_nFru;
    }
    Assert(m_pFound != nullptr, "frudata.cpp", "pFru");
    return *m_pFound;
}

} // namespace Frudata_Private

// The library-wide state: the lists of FRUs, the cursor over them, and the caller's settings.
#pragma once

#include "frudata/image/fru.h"
#include "frudata/orderedlist.h"
#include "frudata/system/fruproperties.h"

namespace Frudata_Private {

/// Nothing is selected at this level of the cursor.
constexpr UINT32 CURSOR_NONE = 0xFFFFFFFF;

class CFruData {
  public:
    CFruData();
    CFruData(const CFruData&) = delete;
    CFruData& operator=(const CFruData&) = delete;
    /// Destroys every FRU and locator, then the lists.
    ~CFruData();

    /// Whether the lists could be allocated.
    bool IsComplete() const { return m_pFileList && m_pSystemList && m_pLocatorList; }
    /// Clears the cursor from the FRU, or from the area, downwards.
    void ClearFru();
    void ClearArea();
    /// The FRU at the cursor; its absence is a fatal assertion.
    CFru& SelectedFru() const;

    bool m_fLoaded = false;
    /// No operation sets it: hosts track their own changes.
    bool m_fModified = false;
    bool m_fPropertiesLoaded = false;
    int m_listType = FRU_LIST_NONE;
    UINT32 m_nFru = CURSOR_NONE;
    FRU_AREA m_area = FRU_AREA_NONE;
    UINT32 m_nField = CURSOR_NONE;
    UINT32 m_nProperty = CURSOR_NONE;
    CFruProperties m_properties;
    FRU_PROGRESS_CALLBACK m_pfnProgress = nullptr;
    UINT32 m_progressInterval = 1;
    std::unique_ptr<OrderedList<CFru*>> m_pFileList;
    std::unique_ptr<OrderedList<CFru*>> m_pSystemList;
    OrderedList<CFru*>* m_pCurrentList = nullptr; ///< one of the two above
    /// Stays empty: no operation of this revision runs the SDR scan.
    std::unique_ptr<OrderedList<FRU_LOCATOR*>> m_pLocatorList;

  private:
    // The last result of SelectedFru, and its list.
    mutable CFru* m_pFound = nullptr;
    mutable const OrderedList<CFru*>* m_pFoundIn = nullptr;
    mutable UINT32 m_nFound = CURSOR_NONE;
};

/// Where the library stands between `Initialize` and `DeInitialize`.
enum START_STATE {
    START_DOWN,   ///< nothing is started, or all is given back
    START_FAILED, ///< `Initialize` failed with its state made; only another one helps
    START_UP      ///< every operation but a few needs it
};
extern START_STATE g_startState;
extern std::unique_ptr<CFruData> g_FruData;

} // namespace Frudata_Private

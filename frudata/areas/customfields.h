// The custom fields that follow the fixed fields of an info area.
#pragma once

#include "frudata/areas/typelength.h"

namespace Frudata_Private {

/// One custom field, a node of the area's list.
struct CFruCustomField {
    UINT8 m_typeLength = 0;
    UINT8 m_data[512] = {}; ///< the data bytes, followed by zero bytes
    std::unique_ptr<CFruCustomField> m_next;
};

/// The custom fields of one area in image order. Counts only fields that were read or added whole.
class CCustomFieldList {
  public:
    CCustomFieldList() = default;
    CCustomFieldList(const CCustomFieldList&) = delete;
    CCustomFieldList& operator=(const CCustomFieldList&) = delete;
    ~CCustomFieldList() { Clear(); }

    UINT32 GetCount() const { return m_NumOfCustomFields; }
    const CFruCustomField* GetHead() const { return m_head.get(); }

    /// The field at `index` from the head, or null.
    CFruCustomField* Find(UINTN index) const;
    /// Appends an empty field, uncounted. @return the field; null when the allocation fails
    CFruCustomField* Append();
    /// Counts the field appended last.
    void Count() { ++m_NumOfCustomFields; }
    /// Removes the field at `index`, which must exist.
    void Remove(UINTN index);
    void Clear();

  private:
    std::unique_ptr<CFruCustomField> m_head;
    CFruCustomField* m_last = nullptr;
    UINT32 m_NumOfCustomFields = 0;
};

} // namespace Frudata_Private

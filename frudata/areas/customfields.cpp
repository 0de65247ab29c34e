#include "frudata/areas/customfields.h"

#include <new>

namespace Frudata_Private {

CFruCustomField* CCustomFieldList::Find(UINTN index) const {
    CFruCustomField* field = m_head.get();
    for (UINTN position = 0; field && position < index; ++position)
        field = field->m_next.get();
    return field;
}

CFruCustomField* CCustomFieldList::Append() {
    std::unique_ptr<CFruCustomField> field(new (std::nothrow) CFruCustomField);
    if (!field)
        return nullptr;
    std::unique_ptr<CFruCustomField>& link = m_last ? m_last->m_next : m_head;
    link = std::move(field);
    m_last = link.get();
    return m_last;
}

void CCustomFieldList::Remove(UINTN index) {
    CFruCustomField* predecessor = index > 0 ? Find(index - 1) : nullptr;
    std::unique_ptr<CFruCustomField>& link = predecessor ? predecessor->m_next : m_head;
    const std::unique_ptr<CFruCustomField> removed = std::move(link);
    link = std::move(removed->m_next);
    if (m_last == removed.get())
        m_last = predecessor;
    --m_NumOfCustomFields;
}

void CCustomFieldList::Clear() {
    while (m_head)
        m_head = std::move(m_head->m_next);
    m_last = nullptr;
    m_NumOfCustomFields = 0;
}

} // namespace Frudata_Private

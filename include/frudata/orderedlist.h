/** frudata: insertion-ordered list of pointers, shared with hosts that run the SDR scan. C++ only. @file */
#ifndef FRUDATA_ORDEREDLIST_H
#define FRUDATA_ORDEREDLIST_H

#include <memory>
#include <new>

/**
 * Doubly linked list of pointers in the order of their addition. It never owns or frees the
 * elements: the owner removes and destroys them before the list goes. T is a pointer type.
 */
template <typename T> class OrderedList {
  public:
    OrderedList() = default;
    OrderedList(const OrderedList&) = delete;
    OrderedList& operator=(const OrderedList&) = delete;
    ~OrderedList() {
        // One node at a time: a chain that destroyed itself recursively could exhaust the stack.
        while (m_head)
            m_head = std::move(m_head->next);
    }

    /** Appends `value`. @return `value`; null when it is null or no node could be allocated */
    T Add(T value) {
        if (!value)
            return nullptr;
        if (!m_head)
            m_head.reset(new (std::nothrow) OrderedListNode);
        OrderedListNode* last = m_head.get();
        while (last && last->next)
            last = last->next.get();
        // An empty list may have an empty head.
        if (last && last->value) {
            last->next.reset(new (std::nothrow) OrderedListNode);
            if (last->next)
                last->next->prev = last;
            last = last->next.get();
        }
        if (!last)
            return nullptr;
        last->value = value;
        ++m_count;
        return value;
    }

    /** Removes the first node that holds `value`. @return `value`; null when it is not present */
    T Remove(T value) {
        OrderedListNode* node = Find(value);
        if (!node)
            return nullptr;
        std::unique_ptr<OrderedListNode>& link = node == m_head.get() ? m_head : node->prev->next;
        std::unique_ptr<OrderedListNode> removed = std::move(link);
        link = std::move(removed->next);
        if (link)
            link->prev = removed->prev;
        --m_count;
        return value;
    }

    /** The first element, or null. */
    T First() const { return m_head ? m_head->value : nullptr; }

    /** The element behind the first occurrence of `value`, or null. */
    T Next(T value) const {
        const OrderedListNode* node = Find(value);
        return node && node->next ? node->next->value : nullptr;
    }

    /** The number of elements. */
    unsigned int Count() const { return m_count; }

    /**
     * The element at `index`, or null. Walks by value with Next: behind an element that was added twice, later
     * indices resolve through its first occurrence. Owners keep elements unique.
     */
    T operator[](unsigned int index) const {
        if (index >= m_count)
            return nullptr;
        T value = First();
        for (unsigned int position = 0; position < index; ++position)
            value = Next(value);
        return value;
    }

  private:
    struct OrderedListNode {
        T value = nullptr;
        OrderedListNode* prev = nullptr;
        std::unique_ptr<OrderedListNode> next;
    };

    OrderedListNode* Find(T value) const {
        OrderedListNode* node = value ? m_head.get() : nullptr;
        while (node && node->value != value)
            node = node->next.get();
        return node;
    }

    std::unique_ptr<OrderedListNode> m_head;
    unsigned int m_count = 0;
};

#endif

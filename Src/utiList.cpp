// utiList.cpp: the doubly linked list of item pointers with one cursor. The operations call one
// another through the object's own table.
#include "Src/assertions.h"
#include "Src/heap.h"

namespace {

constexpr uti::Assertions<"Src/utiList"> asserts;

void *itemOf(const ListNode *node) {
    return node ? node->data : nullptr;
}

// A node that no list has yet; null for a null item or when memory is short.
[[gnu::always_inline]] inline ListNode *makeNode(void *item) {
    if (!item)
        return nullptr;
    auto *node = static_cast<ListNode *>(std::malloc(sizeof(ListNode)));
    if (!node)
        return asserts.fail(node);
    node->data = item;
    return node;
}

// Puts a node, if there is one, between two others, or null at an end.
[[gnu::always_inline]] inline ListNode *link(List *list, ListNode *node, ListNode *prev,
                                             ListNode *next) {
    if (!node)
        return nullptr;
    node->next = next;
    node->prev = prev;
    (prev ? prev->next : list->head) = node;
    (next ? next->prev : list->tail) = node;
    ++list->count;
    ++list->index;
    return node;
}

} // namespace

List *List_Create(void) {
    List *list = uti::allocateZeroed<List>().release();
    if (!list)
        return asserts.fail(list);
    List_Intitialize(list);
    return list;
}

void List_Intitialize(List *list) {
    *list = {
        .GetCount = GetCount,
        .IsEmpty = IsEmpty,
        .IsDone = IsDone,
        .First = First,
        .Last = Last,
        .Current = Current,
        .Next = Next,
        .Prev = Prev,
        .GetDataInPosition = GetDataInPosition,
        .UpDate = UpDate,
        .AddHead = AddHead,
        .AddTail = AddTail,
        .InsertAfter = InsertAfter,
        .InsertBefore = InsertBefore,
        .Remove = Remove,
        .RemoveAll = RemoveAll,
        .NewListNode = NewListNode,
        .FreeListNode = FreeListNode,
        .GetListNode = GetListNode,
        .count = 0,
        .head = nullptr,
        .tail = nullptr,
        .current = nullptr,
        .index = 0,
    };
}

void List_Destroy(List *list) {
    if (!list)
        return;
    list->RemoveAll(list);
    std::free(list);
}

int32_t GetCount(List *list) {
    return list->count;
}

int32_t IsEmpty(List *list) {
    return list->count == 0 ? 1 : 0;
}

int32_t IsDone(List *list) {
    return list->index < 0 || list->index >= list->count ? 1 : 0;
}

void *First(List *list) {
    list->current = list->head;
    list->index = 0;
    return itemOf(list->current);
}

void *Last(List *list) {
    list->current = list->tail;
    list->index = list->count - 1;
    return itemOf(list->current);
}

void *Current(List *list) {
    return itemOf(list->current);
}

void *Next(List *list) {
    if (list->index >= list->count)
        return nullptr;
    list->current = list->current ? list->current->next : nullptr;
    ++list->index;
    return list->Current(list);
}

void *Prev(List *list) {
    if (list->index < 0)
        return nullptr;
    list->current = list->current ? list->current->prev : nullptr;
    --list->index;
    return list->Current(list);
}

void *GetDataInPosition(List *list, int32_t position) {
    if (list->IsEmpty(list))
        return nullptr;
    void *item = list->First(list);
    for (int32_t i = 0; item && i < position; ++i)
        item = list->Next(list);
    return item;
}

void UpDate(List *list, void *item) {
    if (item && list->current)
        list->current->data = item;
}

ListNode *AddHead(List *list, void *item) {
    return list->current = list->NewListNode(list, nullptr, list->head, item);
}

ListNode *AddTail(List *list, void *item) {
    if (list->NewListNode != NewListNode) [[unlikely]]
        return list->current = list->NewListNode(list, list->tail, nullptr, item);
    // The same for the operation that is ours: lists grow here above all.
    ListNode *node = makeNode(item);
    return list->current = link(list, node, list->tail, nullptr);
}

ListNode *InsertAfter(List *list, void *item) {
    ListNode *node = list->GetListNode(list);
    return list->current = node ? list->NewListNode(list, node, node->next, item) : nullptr;
}

ListNode *InsertBefore(List *list, void *item) {
    ListNode *node = list->GetListNode(list);
    return list->current = node ? list->NewListNode(list, node->prev, node, item) : nullptr;
}

void Remove(List *list) {
    list->FreeListNode(list, list->current);
}

void RemoveAll(List *list) {
    if (list->FreeListNode != FreeListNode) {
        while (list->tail)
            list->FreeListNode(list, list->tail);
        return;
    }
    // The same for the operation that is ours, without mending links that all go.
    ListNode *node = list->tail;
    list->index -= list->count;
    list->count = 0;
    list->head = list->tail = list->current = nullptr;
    while (node) {
        ListNode *prev = node->prev;
        std::free(node);
        node = prev;
    }
}

ListNode *NewListNode(List *list, ListNode *prev, ListNode *next, void *item) {
    return link(list, makeNode(item), prev, next);
}

void FreeListNode(List *list, ListNode *node) {
    if (!node)
        return;
    (node->prev ? node->prev->next : list->head) = node->next;
    (node->next ? node->next->prev : list->tail) = node->prev;
    if (list->current == node)
        list->current = nullptr;
    --list->count;
    --list->index;
    std::free(node);
}

ListNode *GetListNode(List *list) {
    return list->current;
}

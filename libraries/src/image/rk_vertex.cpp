#include "image/rk_vertex.h"

void rk_free_vertices(rk_vertex** head)
{
    if (!head)
        return;
    while (*head) {
        rk_vertex* const next = (*head)->next;
        delete *head;
        *head = next;
    }
}

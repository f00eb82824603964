#include "foundation/HeapArenas.h"

#include <malloc.h>

void HeapArenas::keepFew()
{
    constexpr int mostArenas = 2;
    ::mallopt(M_ARENA_MAX, mostArenas);
}

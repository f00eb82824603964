#pragma once

// How much freed memory the program keeps.
namespace HeapArenas {

// Transfers and conversions come and go on threads of their own. The C library would give each of many threads an arena
// of its own, and each arena keeps pages for what was freed in it: a program that runs for days would hold ever more
// memory that it does not use. Two arenas serve threads that mostly wait. At the start of the program, before other
// threads.
void keepFew();

} // namespace HeapArenas

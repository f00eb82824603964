#pragma once

// What the leak checker of the address sanitizer is not to report of a test program; builds without it never call
// this. Included by the two main() of the test programs alone, since it defines a function: in a source of its own the
// linker would find the sanitizer's empty one first.

extern "C" const char* __lsan_default_suppressions();

extern "C" const char* __lsan_default_suppressions()
{
    // What OpenSSL keeps for a thread goes in the thread's very last step, which the end of a program does not wait
    // for.
    return "leak:libcrypto\n";
}

#pragma once

/** Heap allocations of the calling thread so far, from C and C++. */
long allocationCount();

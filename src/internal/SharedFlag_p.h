#pragma once

namespace Internal {

// Atomic access to flags that are plain variables in public headers, but are shared with workers.

template <typename Value> Value loadShared(const Value &flag)
{
    return __atomic_load_n(&flag, __ATOMIC_ACQUIRE);
}

template <typename Value> void storeShared(Value &flag, Value value)
{
    __atomic_store_n(&flag, value, __ATOMIC_RELEASE);
}

} // namespace Internal

#pragma once

namespace Internal {

// Flags that clients know as plain values, but that workers read and write as well.

template <typename Value> Value loadShared(const Value &flag)
{
    return __atomic_load_n(&flag, __ATOMIC_ACQUIRE);
}

template <typename Value> void storeShared(Value &flag, Value value)
{
    __atomic_store_n(&flag, value, __ATOMIC_RELEASE);
}

} // namespace Internal

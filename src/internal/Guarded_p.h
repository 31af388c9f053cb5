#pragma once

#include "internal/log_p.h"

#include <exception>

// Nothing is thrown across the library's boundary.

namespace Internal {

/** Result of an operation. What it throws is logged after @p text; the result is @p failure then.
 */
template <typename Text, typename Result, typename Operation>
Result guarded(const Text &text, const Result &failure, Operation operation)
{
    try {
        return operation();
    } catch (const std::exception &exception) {
        log() << text << exception.what();
        return failure;
    }
}

/** The same with an empty result for a failure, or none. */
template <typename Text, typename Operation>
auto guarded(const Text &text, Operation operation) -> decltype(operation())
{
    try {
        return operation();
    } catch (const std::exception &exception) {
        log() << text << exception.what();
        return decltype(operation())();
    }
}

/** The same without a text before what was thrown. */
template <typename Operation> auto guarded(Operation operation) -> decltype(operation())
{
    return guarded("", operation);
}

} // namespace Internal

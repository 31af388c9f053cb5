#pragma once

#include "internal/log_p.h"

#include <exception>

// Nothing is thrown across the library's boundary.

namespace Internal {

/** Result of an operation. If it throws, @p text and the exception are logged, and the result is @p
 * failure.
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

/** The same for operations without a result, or with a default-constructed one on failure. */
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

/** The same, with nothing logged before the exception. */
template <typename Operation> auto guarded(Operation operation) -> decltype(operation())
{
    return guarded("", operation);
}

} // namespace Internal

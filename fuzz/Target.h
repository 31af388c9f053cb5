#pragma once

#include "support/Meter.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

/**
 * Included by every fuzz target. A target is a program with one function that takes any bytes: it
 * must not crash, hang, or violate its FUZZ_EXPECT rules. It runs in the simulated meter.
 */

/** Prints the violated rule and aborts the program, which libFuzzer reports. */
#define FUZZ_EXPECT(rule)                                                                          \
    do {                                                                                           \
        if (!(rule)) {                                                                             \
            std::fprintf(stderr, "%s:%d: broken: %s\n", __FILE__, __LINE__, #rule);                \
            std::abort();                                                                          \
        }                                                                                          \
    } while (false)

using FuzzInput = FuzzedDataProvider;

/** A text of at most @p longest bytes, any characters. */
inline QString consumeText(FuzzInput &input, size_t longest = 64)
{
    return QString::fromStdString(input.ConsumeRandomLengthString(longest));
}

inline QByteArray bytesOf(const uint8_t *data, size_t size)
{
    return QByteArray(reinterpret_cast<const char *>(data), int(size));
}

/** Called once, before the first input. */
void prepareTarget();

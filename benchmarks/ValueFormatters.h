#pragma once

#include "ValueSamples.h"

#include <QString>

#include <vector>

/**
 * Another way to make the same text. It gets prefix and decimals as arguments; only
 * NumericalValueBox looks them up.
 */
struct ValueFormatter
{
    const char *name;
    QString (*format)(const ValueSample &sample);
};

/** The formatters that were installed when this was built. */
const std::vector<ValueFormatter> &valueFormatters();

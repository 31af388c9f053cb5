#pragma once

#include "ValueSamples.h"

#include <QString>

#include <vector>

/** Another way to the same text. It is told prefix and decimals; only the value box finds them. */
struct ValueFormatter
{
    const char *name;
    QString (*format)(const ValueSample &sample);
};

/** Those that were at hand when this was built. */
const std::vector<ValueFormatter> &valueFormatters();

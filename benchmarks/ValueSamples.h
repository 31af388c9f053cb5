#pragma once

#include <valuebox/NumericalValueBox.h>

#include <memory>
#include <vector>

/** One measurement, and what a formatter without tables has to be told about it. */
struct ValueSample
{
    ValueBox::NumericalValueBox *box;
    float value;
    ValueBox::testI current;

    float scaled; ///< in the prefix that is shown
    int digits;
    QString unit; ///< with its prefix
    QString text;
};

/**
 * What a recorder formats: runs of measurements with one current, of resistance and inductance,
 * plain and compensated, of any magnitude that the current measures, and some above it.
 */
class ValueSamples
{
public:
    explicit ValueSamples(KTV_Configuration::MeterModels model);

    const ValueSample &next()
    {
        m_next = (m_next + 1) & (size - 1);
        return m_samples[m_next];
    }

private:
    static constexpr std::size_t size = 4096;

    std::vector<std::unique_ptr<ValueBox::NumericalValueBox>> m_boxes;
    std::vector<ValueSample> m_samples;
    std::size_t m_next = 0;
};

#pragma once

#include <valuebox/NumericalValueBox.h>

#include <memory>
#include <vector>

/** One measurement, and the data that a formatter without tables needs. */
struct ValueSample
{
    ValueBox::NumericalValueBox *box;
    float value;
    ValueBox::testI current;

    float scaled; ///< divided by the shown prefix
    int digits;
    QString unit; ///< with its prefix
    QString text;
};

/** Measurements of any magnitude in the range of their current, and some above it. */
class ValueSamples
{
public:
    /** Resistances of a KTV-420, measured with one of these currents at a time. */
    static ValueSamples resistances(std::initializer_list<ValueBox::testI> currents);
    /**
     * The values of a recorder: series of measurements with one current, of resistance and
     * inductance, plain and compensated, of a KTV-4200.
     */
    static ValueSamples recording();

    const ValueSample &next()
    {
        m_next = (m_next + 1) & (size - 1);
        return m_samples[m_next];
    }

    static constexpr std::size_t size = 4096;

private:
    ValueSamples() = default;
    ValueBox::NumericalValueBox *addBox(ValueBox::RoundMetods method);
    void add(ValueBox::NumericalValueBox *box,
             const ValueBox::DynamicRounding::Round_Current_I &set);

    std::vector<std::unique_ptr<ValueBox::NumericalValueBox>> m_boxes;
    std::vector<ValueSample> m_samples;
    std::size_t m_next = 0;
};

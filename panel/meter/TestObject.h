#pragma once

/** The simulated object that is being measured. */
struct TestObject
{
    enum Leads
    {
        Connected,
        Open, ///< nothing can be measured
        Reversed ///< the voltage leads are swapped: readings are negative
    };

    float resistance = 0.0012347F; ///< at the reference temperature, in ohms
    float inductance = 0.0153F; ///< in henries
    float noise = 0.02F; ///< noise of a reading, in percent
    float temperature = 23.5F; ///< in degrees Celsius
    Leads leads = Connected;
};

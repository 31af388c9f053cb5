#pragma once

/**
 * A base that a maker's classes may have besides QObject; filled with a pattern, so that
 * overwritten bytes are noticed.
 */
class Gauge
{
public:
    Gauge() { fill(); }
    virtual ~Gauge() { fill(); }
    virtual int reading() const { return readings[0]; }

protected:
    void fill(int value = -1)
    {
        for (int &reading : readings)
            reading = value;
    }

private:
    int readings[500];
};

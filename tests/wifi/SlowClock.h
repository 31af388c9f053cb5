#pragma once

#include <QtGlobal>

/**
 * While such an object exists, time passes slowly for all threads but the first: a limit of one
 * second expires only after Meter::patience, the longest time that a test waits. So a busy machine
 * does not make a worker's tool miss its limit.
 */
class SlowClock
{
public:
    SlowClock();
    ~SlowClock();
    Q_DISABLE_COPY_MOVE(SlowClock)

    /** Whether a second has passed for the workers. */
    static bool isSecondOver();
};

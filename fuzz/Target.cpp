#include "Target.h"

#include <QCoreApplication>

#include <atomic>
#include <csignal>
#include <ctime>
#include <sys/resource.h>
#include <unistd.h>

namespace {

void dropLine(QtMsgType, const QMessageLogContext &, const QString &)
{
    // Log lines are made as usual but not printed: they would hide the output of libFuzzer.
}

/** Whether all stored inputs have run, and the fuzzer tries new ones. */
std::atomic<bool> triesNewInputs {false};

double seconds(int who)
{
    rusage used {};
    ::getrusage(who, &used);
    return double(used.ru_utime.tv_sec + used.ru_stime.tv_sec)
        + double(used.ru_utime.tv_usec + used.ru_stime.tv_usec) / 1e6;
}

/** Ends the run when it and its children have used up their processor time. */
void checkProcessorTime(sigval limit)
{
    if (triesNewInputs && seconds(RUSAGE_SELF) + seconds(RUSAGE_CHILDREN) >= limit.sival_int)
        ::kill(::getpid(), SIGUSR1); // libFuzzer ends after the current input
}

/**
 * Limits the run to KTV_FUZZ_SECONDS of processor time. libFuzzer itself can only limit the
 * wall-clock time, of which a busy machine leaves a part to each process.
 */
void limitProcessorTime()
{
    const int limit = qEnvironmentVariableIntValue("KTV_FUZZ_SECONDS");
    if (limit <= 0)
        return;
    sigevent event {};
    event.sigev_notify = SIGEV_THREAD;
    event.sigev_notify_function = checkProcessorTime;
    event.sigev_value.sival_int = limit;
    constexpr timespec interval {0, 200000000}; // ns
    const itimerspec times {interval, interval};
    timer_t timer = nullptr;
    FUZZ_EXPECT(::timer_create(CLOCK_MONOTONIC, &event, &timer) == 0);
    FUZZ_EXPECT(::timer_settime(timer, 0, &times, nullptr) == 0);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    if (!Meter::isInside())
        std::exit(1);
    static const QCoreApplication application(*argc, *argv);
    qInstallMessageHandler(dropLine);
    prepareTarget();
    limitProcessorTime();
    return 0;
}

/** libFuzzer's function that changes an input in one of its usual ways. */
extern "C" size_t LLVMFuzzerMutate(uint8_t *data, size_t size, size_t maxSize);

/** Called by libFuzzer for each new input, the first time after all stored inputs have run. */
extern "C" size_t LLVMFuzzerCustomMutator(uint8_t *data, size_t size, size_t maxSize,
                                          unsigned int /*seed*/)
{
    triesNewInputs = true;
    return LLVMFuzzerMutate(data, size, maxSize);
}

#include "Target.h"

#include <QCoreApplication>

#include <csignal>
#include <ctime>

namespace {

void dropLine(QtMsgType, const QMessageLogContext &, const QString &)
{
    // Log lines are made as usual but not printed: they would hide the output of libFuzzer.
}

/**
 * Ends the run after KTV_FUZZ_SECONDS of the processor time of this process. libFuzzer itself can
 * only limit the wall-clock time, of which a busy machine leaves a part to each process.
 */
void limitProcessorTime()
{
    itimerspec limit {};
    limit.it_value.tv_sec = qEnvironmentVariableIntValue("KTV_FUZZ_SECONDS");
    sigevent event {};
    event.sigev_notify = SIGEV_SIGNAL;
    event.sigev_signo = SIGUSR1; // libFuzzer ends after the current input
    timer_t timer = nullptr;
    FUZZ_EXPECT(::timer_create(CLOCK_PROCESS_CPUTIME_ID, &event, &timer) == 0);
    FUZZ_EXPECT(::timer_settime(timer, 0, &limit, nullptr) == 0); // 0 s: no limit
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

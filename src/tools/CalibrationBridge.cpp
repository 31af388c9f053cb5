// The bridge between the serial line and the measuring hardware, and the worker that restarts it.

#include "internal/BackgroundWork_p.h"
#include "internal/SharedFlag_p.h"
#include "internal/log_p.h"
#include "tools/SerialLine_p.h"
#include "tools/Tools.h"

#include <QDeadlineTimer>
#include <QThread>

using Internal::bridgeCommand;
using Internal::CommandResult;
using Internal::finishOnly;
using Internal::isFinished;
using Internal::listBridge;
using Internal::loadShared;
using Internal::log;
using Internal::runDirect;
using Internal::runShell;
using Internal::storeShared;
using Internal::Waits;

namespace QERNTools {

bool Tools::isCalibrationModeActive = false;
QFuture<void> Tools::asyncSocatRuner;

namespace {

Internal::EndlessWork bridge(Tools::asyncSocatRuner,
                             [] { storeShared(Tools::isCalibrationModeActive, false); });

constexpr int shortestRun = 1000; // ms from one start of the bridge to the next

void cancelRun()
{
    if (Tools::asyncSocatRuner.isRunning())
        Tools::asyncSocatRuner.cancel();
}

} // namespace

bool Tools::StartHardwareCalibrationMode()
{
    storeShared(isCalibrationModeActive, true);
    bridge.start(socatProces_Avait);
    QThread::sleep(5);
    const CommandResult listed = runShell(listBridge, finishOnly);
    if (isFinished(listed, QStringLiteral("Tools::StartHardwareCalibrationMode(): ps socat"))
        && listed.output.contains(bridgeCommand))
        return true;
    log() << "Tools::StartHardwareCalibrationMode(): socat no run!";
    cancelRun();
    storeShared(isCalibrationModeActive, false);
    return false;
}

bool Tools::StopHardwareCalibrationMode()
{
    storeShared(isCalibrationModeActive, false); // first, or the bridge would be restarted
    if (!isFinished(runDirect(QStringLiteral("killall socat"), finishOnly),
                    QStringLiteral("Tools::StopHardwareCalibrationMode(): killall socat")))
        return false;
    QThread::sleep(2);
    cancelRun();
    constexpr int lastPoll = 6;
    for (int poll = 0;; ++poll) {
        const CommandResult listed = runShell(listBridge, finishOnly);
        // If the process list cannot be read, it is tried again without limit.
        if (isFinished(listed, QStringLiteral("Tools::StopHardwareCalibrationMode(): ps socat"))) {
            if (!listed.output.contains(bridgeCommand))
                return true;
            if (poll >= lastPoll)
                return false;
        }
        QThread::msleep(500);
    }
}

void Tools::socatProces_Avait()
{
    if (!loadShared(isCalibrationModeActive))
        return;
    // The future of the latest run decides, even if this is an earlier run.
    const auto isCancelled = [] { return bridge.handle().isCanceled(); };
    do {
        if (isCancelled() || bridge.isStopping() || !ConfigurePort())
            return;
        // A bridge that fails at once is not restarted before this.
        const QDeadlineTimer nextStart(shortestRun);
        runDirect(bridgeCommand, {Waits::NoStartWait, Waits::Forever, &bridge.isStopping()});
        bridge.sleepUntil(nextStart, [&isCancelled] {
            return isCancelled() || !loadShared(isCalibrationModeActive);
        });
    } while (loadShared(isCalibrationModeActive));
}

} // namespace QERNTools

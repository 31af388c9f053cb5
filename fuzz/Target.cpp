#include "Target.h"

#include <QCoreApplication>

namespace {

void dropLine(QtMsgType, const QMessageLogContext &, const QString &)
{
    // The lines are made as always; printed, they would drown what libFuzzer says.
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    if (!Meter::isInside())
        std::exit(1);
    static const QCoreApplication application(*argc, *argv);
    qInstallMessageHandler(dropLine);
    prepareTarget();
    return 0;
}

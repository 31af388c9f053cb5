#include "Target.h"

#include <QCoreApplication>

namespace {

void dropLine(QtMsgType, const QMessageLogContext &, const QString &)
{
    // Log lines are made as usual but not printed: they would hide the output of libFuzzer.
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

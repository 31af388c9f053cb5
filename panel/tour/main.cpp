#include "Tour.h"

#include "app/Context.h"
#include "app/Window.h"

#include <datasource/KTV_DataSource.h>

#include <QApplication>
#include <QCommandLineParser>

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QCommandLineParser options;
    options.setApplicationDescription(
        QStringLiteral("Takes a tour of the panel by touches; tells what it sees."));
    const QCommandLineOption pictures(QStringLiteral("pictures"),
                                      QStringLiteral("Leaves a picture of every page there."),
                                      QStringLiteral("directory"));
    options.addOption(pictures);
    options.addHelpOption();
    options.process(application);

    const bool isFirstStart = KTV_DataSource::FirstStart();
    Context context;
    bool isWell = false;
    {
        Window window(context);
        window.show();
        if (isFirstStart)
            window.welcome();
        isWell = Tour(context, window, options.value(pictures)).take();
    }
    // The same on a smaller and on a larger screen.
    for (const QSize &size : {QSize(480, 320), QSize(1024, 600)}) {
        Window window(context, size);
        window.show();
        const QString name = QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
        isWell = isWell && Tour(context, window, options.value(pictures)).glance(name);
    }
    return isWell ? 0 : 1;
}

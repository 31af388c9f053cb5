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
    Window window(context);
    window.show();
    if (isFirstStart)
        window.welcome();
    Tour tour(context, window, options.value(pictures));
    return tour.take() ? 0 : 1;
}

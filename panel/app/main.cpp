#include "app/Context.h"
#include "app/StartPicture.h"
#include "app/Window.h"

#include <datasource/KTV_DataSource.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QScreen>

namespace {

/** The requested size; without one, that of a display without a desktop, else 800 x 480. */
QSize sizeOf(const QString &asked)
{
    const QSize size(asked.section(QLatin1Char('x'), 0, 0).toInt(),
                     asked.section(QLatin1Char('x'), 1, 1).toInt());
    if (!size.isEmpty())
        return size;
    const QString platform = QGuiApplication::platformName();
    if (platform == QLatin1String("linuxfb") || platform == QLatin1String("eglfs"))
        return QGuiApplication::primaryScreen()->size();
    return {800, 480};
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QCommandLineParser options;
    options.setApplicationDescription(QStringLiteral("The panel: a touch screen for the meter."));
    const QCommandLineOption size(QStringLiteral("size"),
                                  QStringLiteral("Size of the window; the whole screen where there "
                                                 "is no desktop, else 800x480."),
                                  QStringLiteral("WIDTHxHEIGHT"));
    options.addOption(size);
    options.addHelpOption();
    options.process(application);
    const QSize wanted = sizeOf(options.value(size));
    StartPicture picture(wanted);
    picture.present();
    const bool isFirstStart = KTV_DataSource::FirstStart();
    Context context;
    Window window(context, wanted);
    window.show();
    picture.hide();
    if (isFirstStart)
        window.welcome();
    return QApplication::exec();
}

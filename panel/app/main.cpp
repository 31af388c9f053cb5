#include "app/Context.h"
#include "app/Window.h"

#include <datasource/KTV_DataSource.h>

#include <QApplication>

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    const bool isFirstStart = KTV_DataSource::FirstStart();
    Context context;
    Window window(context);
    window.show();
    if (isFirstStart)
        window.welcome();
    return QApplication::exec();
}

// A language switch: an interface gets all of its texts again, the pick lists follow, and the
// choice is stored for the next start.

#include <configuration/KTV_InterfaceConfig.h>
#include <datasource/KTV_DataSource.h>
#include <language/LangSerwis.h>

#include <QCoreApplication>
#include <QDate>
#include <QTextStream>

#include <memory>

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    KTV_DataSource meter;
    meter.setMeterSerialName(QStringLiteral("CH20417")); // before any SetLang()

    QTextStream out(stdout);
    const LangSerwis *lang = meter.get_Lang();
    const std::unique_ptr<QStringList> codes(lang->getLangList());
    for (const QString &code : std::as_const(*codes)) {
        meter.SetLang(code);
        // The last argument is shown if the language has no such text.
        out << lang->getCurrentLang() << ": "
            << lang->getText(QStringLiteral("Main"), QStringLiteral("title"),
                             QStringLiteral("Microohmmeter"))
            << ", " << QDate(2026, 3, 31).toString(lang->getDataFormat()) << Qt::endl;
    }
    meter.get_InterfaceConfig()->setValue(KTV_InterfaceConfig::MAIN_Lang, lang->getCurrentLang());
}

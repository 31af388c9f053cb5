#include "Samples.h"
#include "ShiftedClock.h"
#include "support/Meter.h"

#include <configuration/KTV_InterfaceConfig.h>
#include <counters/KTV_Liczniki.h>
#include <datalist/KTV_DataList.h>
#include <datasource/KTV_DataSource.h>
#include <language/LangSerwis.h>
#include <sound/BuzzerClass.h>
#include <tools/Tools.h>
#include <valuebox/NumericalValueBox.h>
#include <wifi/KTV_Connection.h>

#include <QElapsedTimer>
#include <QThreadPool>
#include <QtTest>

#include <memory>
#include <unistd.h>

using Buzzer::BuzzerClass;
using QERNTools::Tools;
using SoundNamespace::Sound;
using ValueBox::NumericalValueBox;

namespace {

constexpr std::time_t year = 31557600; // seconds

std::unique_ptr<KTV_DataSource> source;

void begin(const QString &serialNumber)
{
    source.reset(); // only one instance at a time can use the stores
    source = std::make_unique<KTV_DataSource>();
    NumericalValueBox::prepareStaticDefaultValue(ValueBox::Temp_Celsius);
    source->setMeterSerialName(serialNumber);
}

bool facades(int)
{
    // With a known model the rounding tables would be filled again, and earlier ones are never
    // freed, because values may still use them.
    begin(QString());
    return source->get_Lang() && source->getHelpManager();
}

bool languages(int turn)
{
    const QStringList codes {"EN", "PL", "DE", "US"};
    source->SetLang(codes.at(turn % 4));
    const std::unique_ptr<QStringList> all(source->get_Lang()->getLangList());
    return !all->isEmpty() && source->get_DataList()->GetDefaultMaterialsCount() > 0;
}

bool settings(int turn)
{
    const QString value = QString::number(turn);
    source->get_InterfaceConfig()->setValue(KTV_InterfaceConfig::MAIN_Pin, value);
    return source->get_InterfaceConfig()->getValue(KTV_InterfaceConfig::MAIN_Pin, QString())
        == value;
}

bool counters(int)
{
    const auto before = source->getLiczniki()->get_dictionary(KTV_Liczniki::Licznik_Demagnetyzacja);
    source->getLiczniki()->Up_Licznik_Demagnetyzacja();
    source->getLiczniki()->SaveLiczniki();
    return source->getLiczniki()->get_dictionary(KTV_Liczniki::Licznik_Demagnetyzacja)
        == before + 1;
}

bool lists(int turn)
{
    KTV_DataList &store = *source->get_DataList();
    const QString name = QStringLiteral("I \u0131 i \u0130 ") + QString::number(turn);
    if (!store.AddMaterial(name, 0.00393))
        return false;
    const std::unique_ptr<QList<MaterialList_Element *>> found(
        store.GetMaterials(false, true, name, 0));
    bool isDone = found && found->size() == 1;
    for (const MaterialList_Element *element : std::as_const(*found))
        isDone = store.DeleteMaterial(element->ID) && isDone;
    qDeleteAll(*found);
    return isDone;
}

/** The same texts in every system locale. */
bool values(int)
{
    return NumericalValueBox::round(1234.5678, 2) == "1234.57"
        && qAbs(NumericalValueBox::getValue("12.50 m\u2126") - 0.0125F) < 1e-6F
        && Tools::humanFileSize(1536) == "1.50 kB";
}

bool polls(int)
{
    source->getConnection()->onStatusTime();
    source->getConnection()->onStatusDetailTime();
    return true;
}

bool scans(int turn)
{
    return source->getConnection()->ScanNetwork(turn % 2 == 0);
}

bool networks(int)
{
    WiFi::KTV_Connection &connection = *source->getConnection();
    return connection.AddNetwork("Lab", "ohm-law-1827") && connection.DeleteNetwork("Lab");
}

bool tones(int turn)
{
    source->Buzzer(BuzzerClass::Tone_Decline, turn % 3 == 0);
    if (turn % 2)
        source->Buzzer(BuzzerClass::Tone_Empty, false);
    return true;
}

bool samples(int turn)
{
    Sound::Play(Sound::SOUND_ERROR, turn % 2 == 0, true, "/etc/wav/");
    Sound::Play(Sound::SOUND_Empty, true, true, "/etc/wav/");
    return !Sound::process;
}

bool usb(int turn)
{
    if (turn % 2)
        return source->SetUSBMode(Tools::USB_RNDIS, Tools::RS232_None)
            && source->getUSB_Mode() == Tools::USB_RNDIS;
    return source->SetUSBMode(Tools::USB_RS232, Tools::RS232_Console)
        && source->getRS_Mode() == Tools::RS232_Console;
}

bool card(int)
{
    source->updateTimeDisk();
    const std::unique_ptr<QERNTools::DiskInfo> info(source->getDiskInfo());
    return !info->totalText.isEmpty();
}

struct Work
{
    const char *name;
    bool (*doIt)(int turn);
    int repeats; ///< in each turn
};

const Work works[] = {
    {"facades", facades, 1},    {"languages", languages, 4}, {"settings", settings, 20},
    {"counters", counters, 20}, {"lists", lists, 20},        {"values", values, 100},
    {"polls", polls, 2},        {"scans", scans, 2},         {"networks", networks, 1},
    {"tones", tones, 2},        {"samples", samples, 2},     {"USB", usb, 1},
    {"card", card, 5},
};

} // namespace

/**
 * Everything that an interface does, in turns, much faster than an interface: every result is
 * right, and nothing that the process uses grows. Runs for KTV_SOAK_MINUTES; without
 * this variable only for some turns, for CI. With KTV_SOAK_CLOCK the clock is set forward and back
 * by years meanwhile; with KTV_SOAK_ONLY only the named kinds of work are done, to find out which
 * one grows.
 */
class TstSoak : public QObject
{
    Q_OBJECT
private slots:
    void soak();
};

void TstSoak::soak()
{
    QLoggingCategory::setFilterRules("default.debug=false"); // there are too many lines
    const bool setsClock = qEnvironmentVariableIsSet("KTV_SOAK_CLOCK");
    const double seconds = qEnvironmentVariable("KTV_SOAK_MINUTES").toDouble() * 60;
    constexpr int fewest = 24;
    const std::time_t years[] = {0, -20, 5, -50, 30, 70}; // also before 1980 and after 2038
    const QStringList only = qEnvironmentVariable("KTV_SOAK_ONLY").split(',', Qt::SkipEmptyParts);
    QElapsedTimer time;
    time.start();
    Samples held;
    begin("CK0001");
    for (int turn = 0; turn < fewest || double(time.elapsed()) < seconds * 1000; ++turn) {
        if (setsClock)
            ShiftedClock::set(year * years[turn % 6]);
        for (const Work &work : works) {
            if (!only.isEmpty() && !only.contains(work.name))
                continue;
            for (int repeat = 0; repeat < work.repeats; ++repeat)
                QVERIFY2(work.doIt(turn),
                         qPrintable(QStringLiteral("%1, turn %2")
                                        .arg(QString::fromLatin1(work.name))
                                        .arg(turn)));
            QCoreApplication::processEvents();
        }
        source->Buzzer(BuzzerClass::Tone_Empty, false);
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        held.take(double(time.elapsed()) / 1000);
    }
    source.reset();
    qInfo("%s", qPrintable(held.summary()));
    const QString plot = qEnvironmentVariable("KTV_SOAK_PLOT");
    if (!plot.isEmpty())
        Meter::writeFile(plot, held.svg("What the process holds"));
    const QString growth = held.growth();
    QVERIFY2(growth.isEmpty(), qPrintable(growth));
}

int main(int argc, char *argv[])
{
    if (!Meter::isInside())
        return 1;
    // Otherwise memory that the allocator keeps for later use would count as used.
    if (!qEnvironmentVariableIsSet("GLIBC_TUNABLES")) {
        qputenv("GLIBC_TUNABLES", "glibc.malloc.tcache_count=0");
        ::execv("/proc/self/exe", argv);
    }
    const QCoreApplication application(argc, argv);
    TstSoak test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_soak.moc"

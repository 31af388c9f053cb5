#include "support/CardRecord.h"
#include "support/LogCapture.h"
#include "support/Meter.h"

#include "internal/DurableFile_p.h"
#include "wifi/KnownNetworks_p.h"
#include <configuration/KTV_InterfaceConfig.h>
#include <counters/KTV_Liczniki.h>
#include <datalist/KTV_DataList.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <cstdio>
#include <functional>
#include <memory>

/** After the battery is pulled, the changes of every call that had returned are on the card. */
class TstPowerCut : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void settings();
    void settingsOfTheFirstStart();
    void settingsReset();
    void lists();
    void listsOfTheFirstStart();
    void knownNetworks();
    void counters_data();
    void counters();
    void replacedFile();

private:
    using Call = std::function<void()>;
    using Config = KTV_InterfaceConfig;

    /**
     * Records calls and then tries a power cut at every moment. The state that @p look then finds
     * must be that after the last call that had returned, or after the next one.
     */
    void cut(const std::vector<Call> &calls, const std::function<QString()> &look);
    QString find(const QString &directory, const std::function<QString()> &look);

    Call change(const std::function<void(Config &)> &work);
    QString storedSettings() const;
    QString languages() const { return m_directory->path() + "/Langs/"; }
    std::unique_ptr<KTV_DataList> lists(const QString &language) const;
    QString storedLists(const QString &language) const;

    QString m_prefix; ///< path of the files for calls and looks
    std::unique_ptr<QTemporaryDir> m_directory;
};

void TstPowerCut::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    m_prefix = m_directory->path() + "/card/";
    QDir().mkpath(m_prefix);
}

QString TstPowerCut::find(const QString &directory, const std::function<QString()> &look)
{
    const QString before = m_prefix;
    m_prefix = directory;
    QString found = look();
    m_prefix = before;
    return found;
}

void TstPowerCut::cut(const std::vector<Call> &calls, const std::function<QString()> &look)
{
    const QString copy = m_directory->path() + "/copy/";
    const auto now = [&] {
        QDir(copy).removeRecursively();
        QDir().mkpath(copy);
        for (const QString &name : QDir(m_prefix).entryList(QDir::Files))
            QFile::copy(m_prefix + name, copy + name);
        return find(copy, look);
    };
    const LogCapture log;
    // First without a record, to get the state after each call; then again from the same start.
    const QString first = m_directory->path() + "/first/";
    QDir().mkpath(first);
    for (const QString &name : QDir(m_prefix).entryList(QDir::Files))
        QFile::copy(m_prefix + name, first + name);
    QStringList found {now()};
    for (const Call &call : calls) {
        call();
        found += now();
    }
    QDir(m_prefix).removeRecursively();
    QDir().mkpath(m_prefix);
    for (const QString &name : QDir(first).entryList(QDir::Files))
        QFile::copy(first + name, m_prefix + name);

    CardRecord record(m_prefix);
    for (const Call &call : calls) {
        call();
        record.answered();
    }
    record.stop();
    int lost = 0;
    const int cuts = record.forEachCut(copy, [&](int answers) {
        const QString left = find(copy, look);
        if (left == found.at(answers) || left == found.value(answers + 1, found.last()))
            return;
        if (lost++ == 0)
            std::fprintf(stderr, "after %d answers: %s instead of %s\n", answers,
                         qPrintable(left.left(200)), qPrintable(found.at(answers).left(200)));
    });
    std::fprintf(stderr, "%d different cuts\n", cuts);
    QVERIFY(cuts > 2 * int(calls.size()));
    QCOMPARE(lost, 0);
}

TstPowerCut::Call TstPowerCut::change(const std::function<void(Config &)> &work)
{
    return [this, work] {
        Config config(m_prefix);
        work(config);
    };
}

QString TstPowerCut::storedSettings() const
{
    Config config(m_prefix);
    return config.getValue(Config::MAIN_Lang, QStringLiteral("-"))
        + config.getValue(Config::MAIN_Pin, QStringLiteral("-"));
}

std::unique_ptr<KTV_DataList> TstPowerCut::lists(const QString &language) const
{
    return std::make_unique<KTV_DataList>(m_prefix, languages(), language);
}

namespace {

template <typename Element> QString texts(QList<Element *> *list, QString Element::*text)
{
    if (!list)
        return QStringLiteral("no list");
    QString all;
    for (const Element *element : *list)
        all += element->*text + ',';
    qDeleteAll(*list);
    delete list;
    return all;
}

} // namespace

QString TstPowerCut::storedLists(const QString &language) const
{
    const auto store = lists(language);
    return texts(store->GetObiectTyp(true, true, "", 0), &DataList_Element::Value) + '|'
        + texts(store->GetObiectName(true, true, "", 0), &DataList_Element::Value) + '|'
        + texts(store->GetMaterials(true, true, "", 0), &MaterialList_Element::Name) + '|'
        + texts(store->GetLimits_R("", 0), &LimitList_Element::Name);
}

void TstPowerCut::settings()
{
    change([](Config &config) { config.setValue(Config::MAIN_Lang, QStringLiteral("EN")); })();
    cut({change([](Config &config) { config.setValue(Config::MAIN_Lang, QStringLiteral("PL")); }),
         change([](Config &config) { config.setValue(Config::MAIN_Pin, QString(9000, '1')); }),
         change([](Config &config) {
             config.deleteValue({Config::MAIN_Lang, Config::MAIN_Pin});
         })},
        [this] { return storedSettings(); });
}

void TstPowerCut::settingsOfTheFirstStart()
{
    cut({change([](Config &config) { config.setValue(Config::MAIN_Lang, QStringLiteral("PL")); })},
        [this] { return storedSettings(); });
}

void TstPowerCut::settingsReset()
{
    change([](Config &config) { config.setValue(Config::MAIN_Lang, QStringLiteral("PL")); })();
    cut({change([](Config &config) { config.RestoreFabricalSetting(); }),
         change([](Config &config) { config.setValue(Config::MAIN_Pin, 1); })},
        [this] { return storedSettings(); });
}

void TstPowerCut::lists()
{
    const auto changed = [this](const std::function<bool(KTV_DataList &)> &work) {
        return [=] {
            const auto store = lists(QStringLiteral("XX"));
            QVERIFY(work(*store));
        };
    };
    cut({changed([](KTV_DataList &store) { return store.AddObiectTyp("type"); }),
         changed([](KTV_DataList &store) { return store.AddMaterial(QString(300, 'x'), 0.1); }),
         changed([](KTV_DataList &store) { return store.AddLimit_R("limit", "2", "1"); }),
         changed([](KTV_DataList &store) { return store.UpdateLimit_R(1, "other", "3", "1"); }),
         changed([](KTV_DataList &store) { return store.DeleteObiectTyp(1); })},
        [this] { return storedLists(QStringLiteral("XX")); });
}

void TstPowerCut::listsOfTheFirstStart()
{
    const QString folder = languages() + "EN/default_";
    Meter::writeFile(folder + "obiectTyp.txt", "one\ntwo\n");
    Meter::writeFile(folder + "obiectName.txt", QByteArray(5000, 'x') + "\nthree\n");
    Meter::writeFile(folder + "materials.txt", "Copper?0.00393\n");
    const QString whole = "one,two,|" + QString(5000, 'x') + ",three,|Copper,|";
    cut({[this] { lists(QStringLiteral("EN")); }}, [&] {
        const QString found = storedLists(QStringLiteral("EN"));
        return found == whole ? QString() : found; // completed by the next start
    });
}

void TstPowerCut::knownNetworks()
{
    const auto changed = [this](const std::function<bool(Internal::KnownNetworks &)> &work) {
        return [=] {
            Internal::KnownNetworks networks(m_prefix);
            QVERIFY(networks.open() && work(networks));
        };
    };
    changed([](Internal::KnownNetworks &) { return true; })();
    cut({changed([](Internal::KnownNetworks &networks) { return networks.add("lab", ""); }),
         changed([](Internal::KnownNetworks &networks) { return networks.add("lab", "12345678"); }),
         changed([](Internal::KnownNetworks &networks) { return networks.remove("lab"); })},
        [this] {
            Internal::KnownNetworks networks(m_prefix);
            QString found = networks.open() ? "" : "closed";
            const auto all = networks.all();
            for (const WiFi::Network *network : std::as_const(*all))
                found += network->ESSID + ':' + network->key + ',';
            return found;
        });
}

void TstPowerCut::counters_data()
{
    QTest::addColumn<int>("size");
    QTest::newRow("whole file") << 64;
    QTest::newRow("no file") << -1;
    QTest::newRow("empty file") << 0;
    QTest::newRow("file cut within a count") << 20;
    QTest::newRow("bytes behind the last count") << 5000;
}

void TstPowerCut::counters()
{
    QFETCH(int, size);
    const auto count = [this] { KTV_Liczniki(m_prefix).Up_Licznik_Demagnetyzacja(); };
    const QString path = m_prefix + "liczniki.bin";
    if (size >= 0) {
        count();
        const QByteArray bytes = Meter::readFile(path);
        Meter::writeFile(path, bytes.left(size) + QByteArray(qMax(0, size - 64), 'x'));
    }
    cut({count, count}, [this] {
        const KTV_Liczniki counters(m_prefix);
        return QString::number(counters.get_dictionary(KTV_Liczniki::Licznik_Demagnetyzacja));
    });
}

void TstPowerCut::replacedFile()
{
    const QString name = QStringLiteral("a.conf");
    Meter::writeFile(m_prefix + name, "first");
    const auto replace = [=](const QByteArray &content) {
        return [=] {
            QString reason;
            QVERIFY(Internal::replaceFile(m_prefix + name, content, &reason));
        };
    };
    cut({replace("second"), replace(QByteArray(3000, 'x')), replace("")},
        [=] { return QString::fromLatin1(Meter::readFile(m_prefix + name)); });
}

KTV_METER_TEST_MAIN(TstPowerCut)
#include "tst_power_cut.moc"

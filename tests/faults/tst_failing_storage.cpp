#include "FailingStorage.h"
#include "support/LogCapture.h"
#include "support/Meter.h"

#include <configuration/KTV_InterfaceConfig.h>
#include <counters/KTV_Liczniki.h>
#include <datalist/KTV_DataList.h>
#include <wifi/KTV_Connection.h>

#include <QDir>
#include <QtTest>

#include <cerrno>
#include <cstring>
#include <memory>
#include <optional>
#include <utility>

namespace {

const QString userData = QStringLiteral("/media/sdcard/UserData/");
const QString logs = QStringLiteral("/media/sdcard/Log/");
const QString languages = QStringLiteral("/home/root/Langs/");
const QString supplicantFile = QStringLiteral("/etc/wpa_supplicant/wpa_supplicant-wlan0.conf");
const QString passPhrase = QStringLiteral("ohm-law-1827");

/**
 * One change of a store. The state of the store before and after it is described as a text.
 */
class Operation
{
public:
    virtual ~Operation() = default;

    /** Creates the state before the change, and opens the service. */
    virtual void prepare() = 0;
    /** Makes the change. @return its result; no value if failures are only logged */
    virtual std::optional<bool> change() = 0;
    /** The stored state, as the next start reads it. The service is open afterwards. */
    virtual QString state() = 0;
    /** Prepares the change once more, after state(). */
    virtual void prepareAgain() { }
    /** Whether the next start creates what is missing after a failure. */
    virtual bool isMadeByNextStart() const { return false; }
    /** Whether a failure must be logged; called after state(). */
    virtual bool isLogged(bool isDone) const { return !isDone; }
};

void clearStores()
{
    for (const QString &directory : {userData, logs}) {
        QDir(directory).removeRecursively();
        QDir().mkpath(directory);
    }
}

class SettingChange : public Operation
{
public:
    void prepare() override
    {
        clearStores();
        m_store.emplace(userData);
        m_store->setValue(KTV_InterfaceConfig::MAIN_Pin, QStringLiteral("old"));
        m_store->setValue(KTV_InterfaceConfig::MAIN_Lang, QStringLiteral("PL"));
    }
    std::optional<bool> change() override
    {
        m_store->setValue(KTV_InterfaceConfig::MAIN_Pin, QStringLiteral("new"));
        return std::nullopt;
    }
    QString state() override
    {
        m_store.reset();
        m_store.emplace(userData);
        return m_store->getValue(KTV_InterfaceConfig::MAIN_Pin, QStringLiteral("none")) + ' '
            + m_store->getValue(KTV_InterfaceConfig::MAIN_Lang, QStringLiteral("none"));
    }

protected:
    std::optional<KTV_InterfaceConfig> m_store;
};

class SettingsReset : public SettingChange
{
public:
    std::optional<bool> change() override { return m_store->CreateNew(); }
    bool isMadeByNextStart() const override { return true; }
};

class SettingDelete : public SettingChange
{
public:
    std::optional<bool> change() override
    {
        m_store->deleteValue({KTV_InterfaceConfig::MAIN_Pin}); // some of several may be removed
        return std::nullopt;
    }
};

template <typename Element> QStringList namesOf(QList<Element *> *list)
{
    QStringList names;
    if (!list)
        return {QStringLiteral("unreadable")};
    for (const Element *element : *list)
        names += element->Value;
    qDeleteAll(*list);
    delete list;
    return names;
}

class ListAdd : public Operation
{
public:
    void prepare() override
    {
        clearStores();
        m_lists.reset();
        m_lists = std::make_unique<KTV_DataList>(userData, languages, QStringLiteral("EN"));
        m_lists->AddObiectTyp(QStringLiteral("old"));
    }
    std::optional<bool> change() override { return m_lists->AddObiectTyp(QStringLiteral("new")); }
    QString state() override
    {
        m_lists.reset();
        m_lists = std::make_unique<KTV_DataList>(userData, languages, QStringLiteral("EN"));
        return QStringLiteral("%1 %2 %3 ")
                   .arg(m_lists->GetDefaultObiectTypCount())
                   .arg(m_lists->GetDefaultObiectNameCount())
                   .arg(m_lists->GetDefaultMaterialsCount())
            + namesOf(m_lists->GetObiectTyp(false, true, QString(), 0)).join(' ');
    }
    /** Failures are returned, not logged. */
    bool isLogged(bool) const override { return false; }

protected:
    int idOfOld()
    {
        const std::unique_ptr<QList<DataList_Element *>> found(
            m_lists->GetObiectTyp(false, true, QStringLiteral("old"), 1));
        const int id = found->constFirst()->ID;
        qDeleteAll(*found);
        return id;
    }

    std::unique_ptr<KTV_DataList> m_lists;
};

/** An existing entry gets another text. */
class ListUpdate : public ListAdd
{
public:
    void prepare() override
    {
        ListAdd::prepare();
        m_id = idOfOld();
    }
    std::optional<bool> change() override
    {
        return m_lists->UpdateObiectTyp(m_id, QStringLiteral("new"));
    }
    bool isLogged(bool isDone) const override { return !isDone; }

protected:
    int m_id = 0;
};

class ListDelete : public ListUpdate
{
public:
    std::optional<bool> change() override { return m_lists->DeleteObiectTyp(m_id); }
    bool isLogged(bool) const override { return false; }
};

class ListReset : public ListAdd
{
public:
    std::optional<bool> change() override { return m_lists->RestoreFabricalSetting(); }
    bool isMadeByNextStart() const override { return true; }
};

/**
 * The first start: there is no store yet. What is missing afterwards is created by the next start.
 */
class FirstStart : public ListAdd
{
public:
    void prepare() override
    {
        clearStores();
        m_lists.reset();
    }
    std::optional<bool> change() override
    {
        m_lists.reset();
        m_lists = std::make_unique<KTV_DataList>(userData, languages, QStringLiteral("EN"));
        return std::nullopt;
    }
    bool isLogged(bool isDone) const override { return !isDone; }
};

class NetworkAdd : public Operation
{
public:
    void prepare() override
    {
        clearStores();
        m_wifi.reset();
        m_wifi = std::make_unique<WiFi::KTV_Connection>(userData);
        m_wifi->AddNetwork(QStringLiteral("old"), QString());
    }
    std::optional<bool> change() override
    {
        return m_wifi->AddNetwork(QStringLiteral("new"), passPhrase);
    }
    QString state() override
    {
        m_wifi.reset(); // the next start writes the supplicant's file again
        const QString file = QString::fromUtf8(Meter::readFile(supplicantFile));
        m_wifi = std::make_unique<WiFi::KTV_Connection>(userData);
        QStringList names;
        const std::unique_ptr<QList<WiFi::Network *>> known(m_wifi->GetMyNetwork());
        for (const WiFi::Network *network : *known)
            names += network->ESSID;
        qDeleteAll(*known);
        m_isFileWhole = file.count('{') == file.count('}') && file.contains("ap_scan=1\n\n");
        m_isFileCurrent = file.count("network={") == names.size();
        for (const QString &name : std::as_const(names))
            m_isFileCurrent = m_isFileCurrent && file.contains("\tssid=\"" + name + "\"\n");
        return names.join(' ');
    }
    bool isLogged(bool isDone) const override { return !isDone || !m_isFileCurrent; }
    bool isFileWhole() const { return m_isFileWhole; }

protected:
    std::unique_ptr<WiFi::KTV_Connection> m_wifi;
    bool m_isFileWhole = false;
    bool m_isFileCurrent = false;
};

class NetworkDelete : public NetworkAdd
{
public:
    std::optional<bool> change() override { return m_wifi->DeleteNetwork(QStringLiteral("old")); }
};

class NetworkReset : public NetworkAdd
{
public:
    std::optional<bool> change() override { return m_wifi->RestoreFabricalSetting(); }
    bool isMadeByNextStart() const override { return true; }
    /** Failures are returned, not logged; the supplicant's file stays. */
    bool isLogged(bool) const override { return false; }
};

/** Changes only the supplicant's file, because a preference is not stored. */
class Preference : public NetworkAdd
{
public:
    void prepare() override
    {
        NetworkAdd::prepare();
        m_wifi->AddNetwork(QStringLiteral("new"), QString());
    }
    std::optional<bool> change() override
    {
        m_wifi->SetPreferedNetwork(QStringLiteral("old"));
        return std::nullopt;
    }
    bool isLogged(bool isDone) const override { return !isDone; }
    QString state() override { return QString::fromUtf8(Meter::readFile(supplicantFile)); }
};

class CountersSaved : public Operation
{
public:
    void prepare() override
    {
        m_counters.reset();
        clearStores();
        { // the destructor writes the file
            KTV_Liczniki counters(logs);
            counters.up_dictionary(KTV_Liczniki::Licznik_Demagnetyzacja);
        }
        m_counters = std::make_unique<KTV_Liczniki>(logs);
    }
    std::optional<bool> change() override
    {
        m_counters->up_dictionary(KTV_Liczniki::Licznik_Demagnetyzacja);
        m_counters.reset();
        return std::nullopt;
    }
    QString state() override
    {
        return QString::fromLatin1(Meter::readFile(logs + "liczniki.bin").toHex());
    }
    /** If it has been counted, counting again would give another state. */
    void prepareAgain() override { prepare(); }

private:
    std::unique_ptr<KTV_Liczniki> m_counters;
};

struct Named
{
    const char *name;
    std::unique_ptr<Operation> (*make)();
};

template <typename Type> std::unique_ptr<Operation> make()
{
    return std::make_unique<Type>();
}

const Named operations[] = {
    {"a setting is changed", make<SettingChange>},
    {"settings are deleted", make<SettingDelete>},
    {"settings are reset", make<SettingsReset>},
    {"a list gets an entry", make<ListAdd>},
    {"a list's entry is changed", make<ListUpdate>},
    {"a list loses an entry", make<ListDelete>},
    {"lists are reset", make<ListReset>},
    {"first start", make<FirstStart>},
    {"a network gets known", make<NetworkAdd>},
    {"a network is forgotten", make<NetworkDelete>},
    {"known networks are reset", make<NetworkReset>},
    {"a network is preferred", make<Preference>},
    {"counters are saved", make<CountersSaved>},
};

struct Fault
{
    FailingStorage::Call call;
    const char *name;
    QVector<int> errors;
};

const Fault faults[] = {
    {FailingStorage::Open, "open", {EMFILE, EIO, ENOSPC, EROFS}},
    {FailingStorage::Write, "write", {ENOSPC, EIO, EROFS}},
    {FailingStorage::Flush, "flush", {EIO, ENOSPC, EROFS}},
    {FailingStorage::Rename, "rename", {EIO, ENOSPC, EROFS}},
    {FailingStorage::Unlink, "unlink", {EIO, ENOSPC, EROFS}},
    {FailingStorage::Truncate, "truncate", {EIO, ENOSPC}},
};

/** Every error in the long form, which takes minutes; otherwise the first one. */
QVector<int> reasons(const Fault &fault)
{
    static const bool isLong = qEnvironmentVariableIsSet("KTV_LONG_FORM");
    return isLong ? fault.errors : fault.errors.mid(0, 1);
}

} // namespace

Q_DECLARE_METATYPE(const Named *)
Q_DECLARE_METATYPE(const Fault *)

/**
 * Each system call of a change fails, alone and with all calls after it. Nothing crashes or hangs.
 * The result is true only if the change has been made, and false only if it has not, unless only a
 * flush has failed. The stored state is that before or after the change. The log has the failure,
 * but no pass phrase. Afterwards, without the fault, the same change succeeds.
 */
class TstFailingStorage : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void everyCall_data();
    void everyCall();

private:
    void check(const Named &named, const Fault &fault, int number, int error, bool lasting);

    QString m_before;
    QString m_after;
};

void TstFailingStorage::initTestCase()
{
    for (const char *program : {"ifconfig", "systemctl"}) // not needed here: they only take time
        Meter::hideProgram(program);
    QDir(languages).removeRecursively();
    for (const char *list : {"obiectTyp", "obiectName", "materials"})
        Meter::writeFile(languages + "EN/default_" + list + ".txt", "One?1\nTwo?2\n");
}

void TstFailingStorage::everyCall_data()
{
    QTest::addColumn<const Named *>("named");
    QTest::addColumn<const Fault *>("fault");
    for (const Named &named : operations) {
        for (const Fault &fault : faults)
            QTest::addRow("%s: %s", named.name, fault.name) << &named << &fault;
    }
}

void TstFailingStorage::everyCall()
{
    QFETCH(const Named *, named);
    QFETCH(const Fault *, fault);
    auto operation = named->make();
    operation->prepare();
    FailingStorage::reset();
    operation->change();
    const int calls = FailingStorage::count(fault->call);
    m_after = operation->state();
    operation->prepare();
    m_before = operation->state();
    operation.reset();
    for (int number = 1; number <= calls; ++number) {
        for (const int error : reasons(*fault)) {
            for (const bool lasting : {false, true}) {
                check(*named, *fault, number, error, lasting);
                if (QTest::currentTestFailed()) {
                    qWarning("in: %s %d fails, %s%s", fault->name, number, std::strerror(error),
                             lasting ? ", and all after it" : "");
                    return;
                }
            }
        }
    }
}

void TstFailingStorage::check(const Named &named, const Fault &fault, int number, int error,
                              bool lasting)
{
    const auto operation = named.make();
    operation->prepare();
    QStringList lines;
    std::optional<bool> answer;
    {
        const LogCapture log;
        FailingStorage::failAt(fault.call, number, error, lasting);
        answer = operation->change();
        const bool hasFailed = FailingStorage::hasFailed();
        FailingStorage::reset();
        lines = log.lines();
        QVERIFY(hasFailed);
    }
    const QString state = operation->state();
    const bool isDone = state == m_after;
    QVERIFY2(isDone || state == m_before, qPrintable(state));
    if (answer && (fault.call == FailingStorage::Flush || operation->isMadeByNextStart()))
        QVERIFY2(!*answer || isDone, qPrintable(lines.join('\n')));
    else if (answer)
        QVERIFY2(*answer == isDone, qPrintable(lines.join('\n')));
    QVERIFY(!operation->isLogged(isDone) || !lines.isEmpty());
    QVERIFY(lines.filter(passPhrase).isEmpty());
    if (const auto *network = dynamic_cast<NetworkAdd *>(operation.get()))
        QVERIFY(network->isFileWhole() || dynamic_cast<const Preference *>(network));
    // Without the fault, with what it has left.
    operation->prepareAgain();
    operation->change();
    QCOMPARE(operation->state(), m_after);
}

KTV_METER_TEST_MAIN(TstFailingStorage)
#include "tst_failing_storage.moc"

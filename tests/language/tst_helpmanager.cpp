#include "support/LogCapture.h"
#include "support/Meter.h"

#include <language/helpManager.h>

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>
#include <utility>

using QERNTools::helpManager;

namespace {

QStringList pagesOf(const helpManager &help, const QString &topic)
{
    return *std::unique_ptr<QStringList>(help.GetHelpFileList(topic));
}

} // namespace

/** Help pages and their folders. */
class TstHelpManager : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void folderOfModel_data();
    void folderOfModel();
    void directoryTooDeep();
    void separatorIsAdded();
    void modelsShareAFolder();

    void pages_data();
    void pages();
    void languageSwitch();
    void missingTopic_data();
    void missingTopic();
    void invalidTopic();
    void listsBelongToTheCaller();

private:
    QString directory() const { return m_directory->path() + '/'; }
    void page(const QString &path) const { Meter::writeFile(directory() + path, "<html/>"); }

    std::unique_ptr<QTemporaryDir> m_directory;
};

void TstHelpManager::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
}

void TstHelpManager::folderOfModel_data()
{
    QTest::addColumn<KTV_Configuration::MeterModels>("model");
    QTest::addColumn<QString>("folder");
    QTest::newRow("KTV-410") << KTV_Configuration::KTV_410 << "KTV_410";
    QTest::newRow("KTV-420") << KTV_Configuration::KTV_420 << "KTV_420";
    QTest::newRow("PLX-420 as KTV-420") << KTV_Configuration::PLX_420 << "KTV_420";
    QTest::newRow("KTV-4200") << KTV_Configuration::KTV_4200 << "KTV_4200";
    QTest::newRow("KTV-4400 as KTV-4200") << KTV_Configuration::KTV_4400 << "KTV_4200";
    QTest::newRow("unknown model: none") << KTV_Configuration::MeterModels_NaN << "";
    QTest::newRow("no model at all: none") << KTV_Configuration::MeterModels(99) << "";
}

void TstHelpManager::folderOfModel()
{
    QFETCH(KTV_Configuration::MeterModels, model);
    QFETCH(QString, folder);
    const LogCapture log;
    const helpManager help(directory() + "Help/", model, "EN");
    QCOMPARE(QDir(directory() + "Help").entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             folder.isEmpty() ? QStringList() : QStringList(folder));
    QCOMPARE(log.lines(), QStringList());
    page("Help/" + folder + "/Main/a_EN.html");
    // Without a model folder the path has two separators in a row.
    QCOMPARE(pagesOf(help, "Main"),
             QStringList(directory() + "Help/" + folder + "/Main/a_EN.html"));
    QVERIFY(help.HasHelp("Main"));
    QCOMPARE(log.lines(),
             QStringList("helpManager::HasHelp(" + directory() + "Help/" + folder + "/Main): 1"));
}

void TstHelpManager::directoryTooDeep()
{
    const LogCapture log;
    const helpManager help(directory() + "a/b", KTV_Configuration::KTV_420, "EN");
    QVERIFY(!QFile::exists(directory() + "a")); // one level at most is created
    QVERIFY(!help.HasHelp("Main"));
    QCOMPARE(pagesOf(help, "Main"), QStringList());
    QCOMPARE(log.lines(),
             QStringList("Error creat help directory:" + directory() + "a/b/KTV_420/Main/"));
}

void TstHelpManager::separatorIsAdded()
{
    page("KTV_420/Main/a_EN.html");
    const helpManager help(m_directory->path(), KTV_Configuration::KTV_420, "EN");
    const QStringList expected {directory() + "KTV_420/Main/a_EN.html"};
    QCOMPARE(pagesOf(help, "Main"), expected);
    QCOMPARE(pagesOf(help, "Main/"), expected);
}

void TstHelpManager::modelsShareAFolder()
{
    page("KTV_420/Main/a_EN.html");
    QVERIFY(helpManager(directory(), KTV_Configuration::KTV_420, "EN").HasHelp("Main"));
    QVERIFY(helpManager(directory(), KTV_Configuration::PLX_420, "EN").HasHelp("Main"));
    QVERIFY(!helpManager(directory(), KTV_Configuration::KTV_4200, "EN").HasHelp("Main"));
}

void TstHelpManager::pages_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QString>("code");
    QTest::addColumn<QStringList>("found");
    QTest::newRow("by name") << QStringList {"02_b_EN.html", "01_c_EN.html", "10_a_EN.html"} << "EN"
                             << QStringList {"01_c_EN.html", "02_b_EN.html", "10_a_EN.html"};
    QTest::newRow("other languages")
        << QStringList {"a_EN.html", "a_PL.html"} << "DE" << QStringList();
    QTest::newRow("letter case of the name")
        << QStringList {"a_en.HTML"} << "EN" << QStringList {"a_en.HTML"};
    QTest::newRow("letter case of the code")
        << QStringList {"a_EN.html"} << "en" << QStringList {"a_EN.html"};
    QTest::newRow("htm is not html") << QStringList {"a_EN.htm"} << "EN" << QStringList();
    QTest::newRow("something behind it") << QStringList {"a_EN.html.bak"} << "EN" << QStringList();
    QTest::newRow("no underscore") << QStringList {"aEN.html", "EN.html"} << "EN" << QStringList();
    QTest::newRow("nothing before the underscore")
        << QStringList {"_EN.html"} << "EN" << QStringList {"_EN.html"};
    QTest::newRow("directories are no pages")
        << QStringList {"a_EN.html/x"} << "EN" << QStringList();
    QTest::newRow("pages of a subfolder do not count")
        << QStringList {"sub/a_EN.html"} << "EN" << QStringList();
    QTest::newRow("quotes, percent, letters")
        << QStringList {QStringLiteral("ż'\"%1_EN.html")} << "EN"
        << QStringList {QStringLiteral("ż'\"%1_EN.html")};
    QTest::newRow("no language") << QStringList {"a_.html", "a_EN.html"} << ""
                                 << QStringList {"a_.html"};
}

void TstHelpManager::pages()
{
    QFETCH(QStringList, files);
    QFETCH(QString, code);
    QFETCH(QStringList, found);
    for (const QString &file : std::as_const(files))
        page("KTV_420/Main/" + file);
    const helpManager help(directory(), KTV_Configuration::KTV_420, code);
    const QString topic = directory() + "KTV_420/Main";
    const LogCapture log;
    QCOMPARE(help.HasHelp("Main"), !found.isEmpty());
    QCOMPARE(log.lines(),
             QStringList("helpManager::HasHelp(" + topic + "): " + QString::number(found.size())));
    for (QString &name : found)
        name.prepend(topic + '/');
    QCOMPARE(pagesOf(help, "Main"), found);
    QCOMPARE(log.lines().size(), 1);
}

void TstHelpManager::languageSwitch()
{
    page("KTV_420/Main/a_EN.html");
    page("KTV_420/Main/a_PL.html");
    helpManager help(directory(), KTV_Configuration::KTV_420, "DE");
    QVERIFY(!help.HasHelp("Main"));
    help.SetLang("EN");
    QVERIFY(help.HasHelp("Main"));
    QCOMPARE(pagesOf(help, "Main"), QStringList(directory() + "KTV_420/Main/a_EN.html"));
}

void TstHelpManager::missingTopic_data()
{
    QTest::addColumn<QString>("topic");
    QTest::newRow("plain") << "Main";
    QTest::newRow("quotes and percent") << "a'b\"%1%s";
    QTest::newRow("non-ASCII") << QStringLiteral("główna 主");
}

void TstHelpManager::missingTopic()
{
    QFETCH(QString, topic);
    const LogCapture log;
    const helpManager help(directory(), KTV_Configuration::KTV_420, "EN");
    QVERIFY(!help.HasHelp(topic));
    QVERIFY(QFileInfo(directory() + "KTV_420/" + topic).isDir());
    QCOMPARE(log.lines(), QStringList()); // logged only for an existing topic
    QVERIFY(QDir(directory() + "KTV_420/" + topic).removeRecursively());
    QCOMPARE(pagesOf(help, topic), QStringList());
    QVERIFY(QFileInfo(directory() + "KTV_420/" + topic).isDir());
    QCOMPARE(log.lines(), QStringList());
}

void TstHelpManager::invalidTopic()
{
    const helpManager help(directory(), KTV_Configuration::KTV_420, "EN");
    page("KTV_420/File");
    page("a_EN.html");
    page("KTV_420/b_EN.html");
    const LogCapture log;
    QVERIFY(!help.HasHelp(""));
    QCOMPARE(pagesOf(help, ""), QStringList()); // the model's folder is no topic
    QCOMPARE(log.lines(), QStringList());
    QVERIFY(!help.HasHelp("File"));
    QCOMPARE(pagesOf(help, "File"), QStringList());
    QVERIFY(!help.HasHelp("a/b")); // one level at most is created
    QCOMPARE(pagesOf(help, "a/b"), QStringList());
    const auto failed = "Error creat help directory:" + directory() + "KTV_420/";
    QCOMPARE(log.lines(), (QStringList {failed + "File/", failed + "a/b/"}));
}

void TstHelpManager::listsBelongToTheCaller()
{
    page("KTV_420/Main/a_EN.html");
    const helpManager help(directory(), KTV_Configuration::KTV_420, "EN");
    const std::unique_ptr<QStringList> first(help.GetHelpFileList("Main"));
    const std::unique_ptr<QStringList> second(help.GetHelpFileList("Main"));
    QVERIFY(first && second && first != second);
    second->clear();
    QCOMPARE(first->size(), 1);
}

KTV_METER_TEST_MAIN(TstHelpManager)
#include "tst_helpmanager.moc"

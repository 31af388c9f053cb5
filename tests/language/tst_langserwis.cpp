#include "support/Hostile.h"
#include "support/LogCapture.h"
#include "support/Meter.h"

#include <language/LangSerwis.h>

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>
#include <memory>

using Texts = QHash<QString, QString>;
Q_DECLARE_METATYPE(Texts)
Q_DECLARE_METATYPE(std::function<void(const QString &)>)

namespace {

const QByteArray english =
    "<texts>"
    "<Lang><smallKeyboard value='abc'/><bigKeyboard value='ABC'/>"
    "<regionalSmallKeyboard value='xyz'/><regionalBigKeyboard value='XYZ'/>"
    "<timeFormat value='h:mm ap'/><dataFormat value='M/d/yyyy'/></Lang>"
    "<Main><title value='Title'/><empty value=''/><bare/><upper Value='x'/></Main>"
    "</texts>";
const QByteArray german = "<texts><Main><title value='Überschrift'/></Main></texts>";

const QString unset = QStringLiteral("default");

/** The texts and formats that a service returns. */
struct View
{
    explicit View(const LangSerwis &texts)
        : values {texts.getCurrentLang(),
                  texts.getText("Main", "title", unset),
                  texts.getSmallKeyboard(),
                  texts.getBigKeyboard(),
                  texts.getRegionalSmallKeyboard(),
                  texts.getRegionalBigKeyboard(),
                  texts.getTimeFormat(),
                  texts.getDataFormat()}
    { }
    QStringList values;
};

const QStringList newborn {"EN", unset, "", "", "", "", "hh:mm", "yyyy.MM.dd"};
const QStringList inEnglish {"EN", "Title", "abc", "ABC", "xyz", "XYZ", "h:mm ap", "M/d/yyyy"};
const QStringList inGerman {"DE",        QStringLiteral("Überschrift"), "", "", "", "", "hh:mm",
                            "yyyy.MM.dd"};

} // namespace

/** The language service. */
class TstLangSerwis : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void nothingIsLoadedAtFirst();
    void switching();
    void fallback_data();
    void fallback();
    void directoryInTheFilesPlace();
    void englishMissing();
    void unusableFile_data();
    void unusableFile();

    void text_data();
    void text();
    void nullTexts();
    void section_data();
    void section();
    void formats_data();
    void formats();
    void manyTexts();
    void oddDirectories_data();
    void oddDirectories();

    void offeredLanguages_data();
    void offeredLanguages();
    void listsBelongToTheCaller();

private:
    QString directory() const { return m_directory->path() + '/'; }
    QString fileOf(const QString &code) const { return directory() + code + '/' + code + ".xml"; }
    void write(const QString &code, const QByteArray &text) const
    {
        Meter::writeFile(fileOf(code), text);
    }
    std::unique_ptr<LangSerwis> loaded(const QByteArray &text) const
    {
        write("XX", text);
        auto texts = std::make_unique<LangSerwis>(directory(), KTV_Configuration::KTV_420);
        if (!texts->setLang("XX"))
            qFatal("the language of the test does not load");
        return texts;
    }

    std::unique_ptr<QTemporaryDir> m_directory;
};

void TstLangSerwis::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    write("EN", english);
    write("DE", german);
}

void TstLangSerwis::nothingIsLoadedAtFirst()
{
    const LangSerwis texts(directory(), KTV_Configuration::MeterModels_NaN);
    QCOMPARE(View(texts).values, newborn);
    QVERIFY(std::unique_ptr<Texts>(texts.getSection("Main"))->isEmpty());
}

void TstLangSerwis::switching()
{
    const LogCapture log;
    LangSerwis texts(directory(), KTV_Configuration::MeterModels_NaN);
    QVERIFY(texts.setLang("EN"));
    QCOMPARE(View(texts).values, inEnglish);
    QVERIFY(texts.setLang("DE")); // no section "Lang": back to the defaults
    QCOMPARE(View(texts).values, inGerman);
    QVERIFY(texts.setLang("EN"));
    QCOMPARE(View(texts).values, inEnglish);
    QVERIFY(QFile::remove(fileOf("EN"))); // the loaded texts stay
    QCOMPARE(View(texts).values, inEnglish);
    QCOMPARE(log.lines(), QStringList());
}

void TstLangSerwis::fallback_data()
{
    QTest::addColumn<QString>("code");
    QTest::newRow("no such directory") << "FR";
    QTest::newRow("letter case of a language") << "de";
    QTest::newRow("letter case of the fallback") << "en";
    QTest::newRow("empty") << "";
    QTest::newRow("quotes and percent") << "'\"%1%s";
    QTest::newRow("non-ASCII") << QStringLiteral("ŻÓ");
    QTest::newRow("NUL within") << QString::fromUtf8("D\0E", 3);
}

void TstLangSerwis::fallback()
{
    QFETCH(QString, code);
    LangSerwis texts(directory(), KTV_Configuration::MeterModels_NaN);
    QVERIFY(texts.setLang("DE"));
    const LogCapture log;
    QVERIFY(texts.setLang(code));
    QCOMPARE(View(texts).values, inEnglish);
    QCOMPARE(log.lines(),
             QStringList("LangSerwis::setLang(" + code
                         + "): No such file or directory: " + fileOf(code)));
}

void TstLangSerwis::directoryInTheFilesPlace()
{
    QDir().mkpath(fileOf("FR"));
    LangSerwis texts(directory(), KTV_Configuration::MeterModels_NaN);
    const LogCapture log;
    QVERIFY(texts.setLang("FR")); // exists, but cannot be opened
    QCOMPARE(View(texts).values, inEnglish);
    QCOMPARE(log.lines(),
             QStringList("LangSerwis::setLang(FR): file to open is a directory: " + fileOf("FR")));
}

void TstLangSerwis::englishMissing()
{
    QVERIFY(QFile::remove(fileOf("EN")));
    const auto missing = [this](const QString &code) {
        return "LangSerwis::setLang(" + code + "): No such file or directory: " + fileOf(code);
    };
    const auto unloaded = QStringLiteral(
        "LangSerwis::setLang(EN) Fail to load file:   unexpected end of file\n Row:1 Col:1");
    {
        LangSerwis texts(directory(), KTV_Configuration::MeterModels_NaN);
        QVERIFY(texts.setLang("DE"));
        const LogCapture log;
        QVERIFY(!texts.setLang("EN"));
        QCOMPARE(View(texts).values, inGerman);
        QCOMPARE(log.lines(), (QStringList {missing("EN"), unloaded}));
    }
    LangSerwis texts(directory(), KTV_Configuration::MeterModels_NaN);
    const LogCapture log;
    QVERIFY(!texts.setLang("FR"));
    QCOMPARE(View(texts).values, newborn);
    QCOMPARE(
        log.lines(),
        (QStringList {missing("FR"),
                      "LangSerwis::setLang to default (EN): No such file or directory", unloaded}));
}

void TstLangSerwis::unusableFile_data()
{
    using Preparation = std::function<void(const QString &)>;
    QTest::addColumn<Preparation>("prepare");
    QTest::addColumn<QString>("reason");
    const auto content = [](const QByteArray &bytes) -> Preparation {
        return [bytes](const QString &path) { Meter::writeFile(path, bytes); };
    };
    const auto row = [](const char *name, const Preparation &prepare, const QString &reason) {
        QTest::newRow(name) << prepare << reason;
    };
    row("empty", content({}), "unexpected end of file\n Row:1 Col:1");
    row("cut off", content(english.left(100)), "unexpected end of file\n Row:1 Col:101");
    row("crossed tags", content("<a>\n<b>\n</a></b>"), "tag mismatch\n Row:3 Col:4");
    row("NUL bytes", content(QByteArray(4096, '\0')),
        "error occurred while parsing element\n Row:1 Col:1");
    row("entity bomb", content(Hostile::entityBomb()), QString());
    row("20001 levels", content(Hostile::nested(20001)),
        "elements nested too deeply\n Row:0 Col:0");
    row("500000 levels", content(Hostile::nested(500000)),
        "elements nested too deeply\n Row:0 Col:0");
    row("huge", content(Hostile::huge()), "file too large\n Row:0 Col:0");
}

void TstLangSerwis::unusableFile()
{
    QFETCH(std::function<void(const QString &)>, prepare);
    QFETCH(QString, reason);
    LangSerwis texts(directory(), KTV_Configuration::MeterModels_NaN);
    QVERIFY(texts.setLang("EN"));
    prepare(fileOf("DE"));
    const LogCapture log;
    QVERIFY(!texts.setLang("DE")); // no fallback if the file exists
    QCOMPARE(View(texts).values, inEnglish);
    const auto line = QStringLiteral("LangSerwis::setLang(DE) Fail to load file:   ");
    QCOMPARE(log.lines().size(), 1);
    if (reason.isEmpty())
        QVERIFY(log.lines().constFirst().startsWith(line));
    else
        QCOMPARE(log.lines().constFirst(), line + reason);
}

void TstLangSerwis::text_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("section");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("text");
    // One row in each line.
    // clang-format off
    QTest::newRow("text") << english << "Main" << "title" << "Title";
    QTest::newRow("no such section") << english << "Other" << "title" << unset;
    QTest::newRow("no such key") << english << "Main" << "other" << unset;
    QTest::newRow("key of another section") << english << "Lang" << "title" << unset;
    QTest::newRow("letter case of the section") << english << "main" << "title" << unset;
    QTest::newRow("letter case of the key") << english << "Main" << "Title" << unset;
    QTest::newRow("empty text") << english << "Main" << "empty" << "";
    QTest::newRow("no text") << english << "Main" << "bare" << unset;
    QTest::newRow("letter case of the attribute") << english << "Main" << "upper" << unset;
    QTest::newRow("nameless section") << english << "" << "title" << unset;
    QTest::newRow("nameless key") << english << "Main" << "" << unset;
    QTest::newRow("the root is no section") << english << "texts" << "Main" << unset;
    QTest::newRow("first entry of a name")
        << QByteArray("<t><S><k value='1'/><k value='2'/></S></t>") << "S" << "k" << "1";
    QTest::newRow("first entry counts although it lacks a text")
        << QByteArray("<t><S><k/><k value='2'/></S></t>") << "S" << "k" << unset;
    QTest::newRow("first section of a name")
        << QByteArray("<t><S><k value='1'/></S><S><k value='2'/></S></t>") << "S" << "k" << "1";
    QTest::newRow("first section counts although it lacks the key")
        << QByteArray("<t><S/><S><k value='2'/></S></t>") << "S" << "k" << unset;
    QTest::newRow("entry behind other nodes of the same name")
        << QByteArray("<t><S>&k;<?k i?><k value='1'/><?k i?></S></t>") << "S" << "k" << "1";
    QTest::newRow("deeper entries do not count")
        << QByteArray("<t><S><a><k value='1'/></a></S></t>") << "S" << "k" << unset;
    QTest::newRow("deeper sections do not count")
        << QByteArray("<t><a><S><k value='1'/></S></a></t>") << "S" << "k" << unset;
    QTest::newRow("comments and texts between")
        << QByteArray("<!--c--><t>x<!--c--><S>y<?p i?><k value='1'/></S></t>") << "S" << "k" << "1";
    QTest::newRow("prefix is part of the name") << QByteArray("<t><a:S><b:k value='1'/></a:S></t>")
        << "a:S" << "b:k" << "1";
    QTest::newRow("quotes, percent, letters and lines")
        << QByteArray("<t><S><k value='&quot;%1&apos; żółć&#10;日本'/></S></t>") << "S" << "k"
        << QStringLiteral("\"%1' żółć\n日本");
    QTest::newRow("non-ASCII names") << QByteArray("<t><Główne><tytuł value='1'/></Główne></t>")
        << QStringLiteral("Główne") << QStringLiteral("tytuł") << "1";
    QTest::newRow("root alone") << QByteArray("<t/>") << "S" << "k" << unset;
    // clang-format on
}

void TstLangSerwis::text()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, section);
    QFETCH(QString, key);
    QFETCH(QString, text);
    QCOMPARE(loaded(content)->getText(section, key, unset), text);
}

void TstLangSerwis::nullTexts()
{
    const auto texts = loaded(english);
    QVERIFY(texts->getText("Main", "other", QString()).isNull());
    QVERIFY(texts->getText("Main", "bare", QString()).isNull());
    QVERIFY(!texts->getText("Main", "empty", QString()).isNull());
}

void TstLangSerwis::section_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("section");
    QTest::addColumn<Texts>("texts");
    QTest::newRow("whole, an entry without a text stands for itself")
        << english << "Main"
        << Texts {{"title", "Title"}, {"empty", ""}, {"bare", "bare"}, {"upper", "upper"}};
    QTest::newRow("no such section") << english << "Other" << Texts {};
    QTest::newRow("letter case") << english << "main" << Texts {};
    QTest::newRow("nameless") << english << "" << Texts {};
    QTest::newRow("empty section") << QByteArray("<t><S/></t>") << "S" << Texts {};
    QTest::newRow("last of a key wins")
        << QByteArray("<t><S><k value='1'/><k value='2'/></S></t>") << "S" << Texts {{"k", "2"}};
    QTest::newRow("first section of a name")
        << QByteArray("<t><S><k value='1'/></S><S><l value='2'/></S></t>") << "S"
        << Texts {{"k", "1"}};
    QTest::newRow("every node counts, by its name")
        << QByteArray("<t><S><!--c-->x<k value='1'/></S></t>") << "S"
        << Texts {{"#comment", "#comment"}, {"#text", "#text"}, {"k", "1"}};
    QTest::newRow("deeper entries do not count")
        << QByteArray("<t><S><a><k value='1'/></a></S></t>") << "S" << Texts {{"a", "a"}};
    QTest::newRow("text behind an entry of the same name without one")
        << QByteArray("<t><S><l value='1'/><k/><k value='2'/></S></t>") << "S"
        << Texts {{"l", "1"}, {"k", "2"}};
    QTest::newRow("entry behind an instruction of the same name")
        << QByteArray("<t><S><?k i?><k value='1'/></S></t>") << "S" << Texts {{"k", "1"}};
    QTest::newRow("instruction behind an entry of the same name")
        << QByteArray("<t><S><k value='1'/><?k i?></S></t>") << "S" << Texts {{"k", "k"}};
    QTest::newRow("undeclared entity")
        << QByteArray("<t><R><k value='1'/></R><S>&u;<k value='1&u;2'/></S></t>") << "S"
        << Texts {{"u", "u"}, {"k", "12"}};
}

void TstLangSerwis::section()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, section);
    QFETCH(Texts, texts);
    const auto service = loaded(content);
    for (int i = 0; i < 2; ++i) {
        const std::unique_ptr<Texts> own(service->getSection(section));
        QCOMPARE(*own, texts);
        own->insert("k", "changed by the caller");
    }
}

void TstLangSerwis::formats_data()
{
    QTest::addColumn<QByteArray>("entries");
    QTest::addColumn<QStringList>("view");
    const QString none;
    QTest::newRow("empty section")
        << QByteArray() << QStringList {"", "", "", "", "hh:mm", "yyyy.MM.dd"};
    QTest::newRow("only the time")
        << QByteArray("<timeFormat value='H'/>") << QStringList {"", "", "", "", "H", "yyyy.MM.dd"};
    QTest::newRow("empty texts are texts")
        << QByteArray("<timeFormat value=''/><dataFormat value=''/>")
        << QStringList {"", "", "", "", "", ""};
    QTest::newRow("no date under its right name")
        << QByteArray("<dateFormat value='d'/>")
        << QStringList {"", "", "", "", "hh:mm", "yyyy.MM.dd"};
    QTest::newRow("keyboards unchanged")
        << QByteArray("<smallKeyboard value=' q;w\\n '/><bigKeyboard value='Q'/>"
                      "<regionalSmallKeyboard value='ą'/><regionalBigKeyboard value='Ą'/>")
        << QStringList {" q;w\\n ",          "Q",     QStringLiteral("ą"),
                        QStringLiteral("Ą"), "hh:mm", "yyyy.MM.dd"};
}

void TstLangSerwis::formats()
{
    QFETCH(QByteArray, entries);
    QFETCH(QStringList, view);
    const auto texts = loaded("<t><Lang>" + entries + "</Lang></t>");
    QCOMPARE(View(*texts).values.mid(2), view);
}

void TstLangSerwis::manyTexts()
{
    QByteArray content = "<t>";
    for (int section = 0; section < 100; ++section) {
        content += "<s" + QByteArray::number(section) + '>';
        for (int key = 0; key < 200; ++key)
            content += "<k" + QByteArray::number(key) + " value='" + QByteArray::number(section)
                + '/' + QByteArray::number(key) + "'/>";
        content += "</s" + QByteArray::number(section) + '>';
    }
    const auto texts = loaded(content + "</t>");
    for (int section = 0; section < 100; ++section) {
        for (int key = 0; key < 200; ++key)
            QCOMPARE(texts->getText(QStringLiteral("s%1").arg(section),
                                    QStringLiteral("k%1").arg(key), unset),
                     QStringLiteral("%1/%2").arg(section).arg(key));
    }
}

void TstLangSerwis::oddDirectories_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("quotes") << "a'b\"c/";
    QTest::newRow("percent") << "%1%s%20/";
    QTest::newRow("non-ASCII") << QStringLiteral("języki 言語/");
    QTest::newRow("prefix without a slash") << "Langs";
}

void TstLangSerwis::oddDirectories()
{
    QFETCH(QString, name);
    Meter::writeFile(directory() + name + "PL/PL.xml", german);
    LangSerwis texts(directory() + name, KTV_Configuration::MeterModels_NaN);
    QVERIFY(texts.setLang("PL"));
    QCOMPARE(texts.getCurrentLang(), QStringLiteral("PL"));
    const LogCapture log;
    QVERIFY(!texts.setLang("FR"));
    QCOMPARE(log.lines().constFirst(),
             "LangSerwis::setLang(FR): No such file or directory: " + directory() + name
                 + "FR/FR.xml");
}

void TstLangSerwis::offeredLanguages_data()
{
    QTest::addColumn<KTV_Configuration::MeterModels>("model");
    QTest::addColumn<QStringList>("codes");
    const QStringList folders {"DE", "EN", "ES", QStringLiteral("ŻÓ")};
    const QStringList fixed {"PL", "EN", "US"};
    QTest::newRow("unknown model") << KTV_Configuration::MeterModels_NaN << folders;
    QTest::newRow("KTV-410") << KTV_Configuration::KTV_410 << folders;
    QTest::newRow("KTV-420") << KTV_Configuration::KTV_420 << folders;
    QTest::newRow("KTV-4200") << KTV_Configuration::KTV_4200 << fixed;
    QTest::newRow("KTV-4400") << KTV_Configuration::KTV_4400 << fixed;
    QTest::newRow("PLX-420") << KTV_Configuration::PLX_420 << folders;
    QTest::newRow("no model at all") << KTV_Configuration::MeterModels(99) << folders;
}

void TstLangSerwis::offeredLanguages()
{
    QFETCH(KTV_Configuration::MeterModels, model);
    QFETCH(QStringList, codes);
    QDir(directory()).mkdir("ES"); // without a language file
    QDir(directory()).mkdir(QStringLiteral("ŻÓ"));
    Meter::writeFile(directory() + "FR.xml", english); // a file does not count as a language
    const std::unique_ptr<QStringList> atOnce(LangSerwis(directory(), model).getLangList());
    QCOMPARE(*atOnce, codes);
    LangSerwis texts(directory(), KTV_Configuration::KTV_4400);
    texts.updateMeterModel(model);
    const std::unique_ptr<QStringList> later(texts.getLangList());
    QCOMPARE(*later, codes);
    QCOMPARE(View(texts).values, newborn); // the model changes nothing else
}

void TstLangSerwis::listsBelongToTheCaller()
{
    QVERIFY(QDir(directory()).removeRecursively());
    const LangSerwis texts(directory(), KTV_Configuration::MeterModels_NaN);
    const std::unique_ptr<QStringList> first(texts.getLangList());
    const std::unique_ptr<QStringList> second(texts.getLangList());
    QVERIFY(first && second && first != second);
    QCOMPARE(*first, QStringList());
}

KTV_METER_TEST_MAIN(TstLangSerwis)
#include "tst_langserwis.moc"

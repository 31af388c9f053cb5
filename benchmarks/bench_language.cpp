// A language of 30 sections with 60 entries each: loading it, and looking its texts up, as an
// interface does on a language switch.

#include "Comparison.h"

#include <language/LangSerwis.h>

#include <benchmark/benchmark.h>

#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QHash>
#include <QTemporaryDir>
#include <QVector>

namespace {

constexpr int sectionCount = 30;
constexpr int keyCount = 60;

struct Name
{
    QString section;
    QString key;
};

const QVector<Name> &names()
{
    static const QVector<Name> all = [] {
        QVector<Name> list;
        for (int section = 0; section < sectionCount; ++section) {
            for (int key = 0; key < keyCount; ++key)
                list.append({QStringLiteral("Section%1").arg(section),
                             QStringLiteral("entryNumber%1").arg(key)});
        }
        return list;
    }();
    return all;
}

QString textOf(const Name &name)
{
    return name.section + QLatin1Char(' ') + name.key;
}

void writeLanguage(const QString &directory)
{
    QDir().mkpath(directory + QStringLiteral("EN"));
    QFile file(directory + QStringLiteral("EN/EN.xml"));
    file.open(QIODevice::WriteOnly);
    file.write("<language>");
    QString open;
    for (const Name &name : names()) {
        if (name.section != open) {
            if (!open.isEmpty())
                file.write("</" + open.toUtf8() + '>');
            open = name.section;
            file.write('<' + open.toUtf8() + '>');
        }
        file.write('<' + name.key.toUtf8() + " value='" + textOf(name).toUtf8() + "'/>");
    }
    file.write("</" + open.toUtf8() + "></language>");
}

/** The languages directory of a device that has only this language. */
class Languages
{
public:
    Languages()
    {
        writeLanguage(path());
        m_texts.setLang(QStringLiteral("EN"));
    }

    QString path() const { return m_directory.path() + QLatin1Char('/'); }
    LangSerwis &texts() { return m_texts; }

private:
    const QTemporaryDir m_directory;
    LangSerwis m_texts {path(), KTV_Configuration::KTV_420};
};

void lookup(Comparison &comparison)
{
    Languages languages;
    QHash<QString, QHash<QString, QString>> texts;
    // With its own copies of the strings, as if they had been read from a file, too: Qt compares
    // strings that share their data by address only.
    const auto own = [](const QString &name) { return QString::fromUtf8(name.toUtf8()); };
    for (const Name &name : names())
        texts[own(name.section)].insert(own(name.key), textOf(name));
    const QString unknown;
    comparison.compare(
        {"text lookup, all 1,800, to a hash of hashes", 1.05},
        [&] {
            for (const Name &name : names())
                benchmark::DoNotOptimize(
                    languages.texts().getText(name.section, name.key, unknown));
        },
        [&] {
            for (const Name &name : names()) {
                const auto entries = texts.constFind(name.section);
                benchmark::DoNotOptimize(
                    entries == texts.constEnd() ? unknown : entries->value(name.key, unknown));
            }
        });
}

void loading(Comparison &comparison)
{
    Languages languages;
    const QString file = languages.path() + QStringLiteral("EN/EN.xml");
    comparison.compare(
        {"loading a language, 30 x 60 texts, to QDomDocument", 0.7},
        [&] { languages.texts().setLang(QStringLiteral("EN")); },
        [&] {
            QFile device(file);
            device.open(QIODevice::ReadOnly);
            QDomDocument document;
            document.setContent(&device);
        });
    LangSerwis another(languages.path(), KTV_Configuration::KTV_420);
    const double before = heldKiB();
    another.setLang(QStringLiteral("EN"));
    comparison.figure({"held by a language, 30 x 60 texts", "KiB", 600}, heldKiB() - before);
}

void section(Comparison &comparison)
{
    Languages languages;
    QHash<QString, QString> texts;
    for (int key = 0; key < keyCount; ++key)
        texts.insert(names().at(key).key, textOf(names().at(key)));
    const auto read = [](const QHash<QString, QString> *table) { delete table; };
    comparison.compare(
        {"texts of a section, to a copy of a hash", 2.0},
        [&] { read(languages.texts().getSection(names().first().section)); },
        [&] { read(new QHash<QString, QString>(texts)); });
}

} // namespace

int main(int argc, char *argv[])
{
    return benchmarkMain(argc, argv, [](Comparison &comparison) {
        lookup(comparison);
        loading(comparison);
        section(comparison);
    });
}

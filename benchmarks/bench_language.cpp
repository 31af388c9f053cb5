// Looking up every text of a language of 30 sections with 60 entries each, as an interface does
// on a language switch: the language service against a plain hash of hashes in the same run.

#include "Comparison.h"

#include <language/LangSerwis.h>

#include <benchmark/benchmark.h>

#include <QDir>
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

/** Reports the time of one lookup. */
void reportLookups(benchmark::State &state)
{
    state.counters["lookup"] =
        benchmark::Counter(double(state.iterations()) * names().size(),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void languageService(benchmark::State &state)
{
    const QTemporaryDir directory;
    writeLanguage(directory.path() + QLatin1Char('/'));
    LangSerwis texts(directory.path() + QLatin1Char('/'), KTV_Configuration::KTV_420);
    if (!texts.setLang(QStringLiteral("EN"))
        || texts.getText(names().last().section, names().last().key, {}) != textOf(names().last()))
        return state.SkipWithError("the language does not load");
    const QString unknown;
    for (auto _ : state) {
        for (const Name &name : names())
            benchmark::DoNotOptimize(texts.getText(name.section, name.key, unknown));
    }
    reportLookups(state);
}

void hashOfHashes(benchmark::State &state)
{
    QHash<QString, QHash<QString, QString>> texts;
    for (const Name &name : names())
        texts[name.section].insert(name.key, textOf(name));
    const auto lookup = [&texts](const QString &section, const QString &key,
                                 const QString &unknown) {
        const auto entries = texts.constFind(section);
        return entries == texts.constEnd() ? unknown : entries->value(key, unknown);
    };
    const QString unknown;
    for (auto _ : state) {
        for (const Name &name : names())
            benchmark::DoNotOptimize(lookup(name.section, name.key, unknown));
    }
    reportLookups(state);
}

void languageSwitch(benchmark::State &state)
{
    const QTemporaryDir directory;
    writeLanguage(directory.path() + QLatin1Char('/'));
    LangSerwis texts(directory.path() + QLatin1Char('/'), KTV_Configuration::KTV_420);
    for (auto _ : state)
        benchmark::DoNotOptimize(texts.setLang(QStringLiteral("EN")));
}

BENCHMARK(hashOfHashes);
BENCHMARK(languageService);
BENCHMARK(languageSwitch);

} // namespace

int main(int argc, char *argv[])
{
    return benchmarkMain(argc, argv, [](Comparison &) {});
}

#include "../Models.h"
#include "Checks.h"

#include <QDate>
#include <QMap>
#include <QRegularExpression>
#include <QTime>

#include <algorithm>

namespace {

/** The texts of a language: their line numbers, by section and key. */
struct Texts
{
    QString path;
    QMap<QString, int> sections;
    QMap<QPair<QString, QString>, int> keys;
    QMap<QPair<QString, QString>, QString> values;
};

using LanguageTexts = QMap<QString, Texts>; ///< by code

const QString presentation = QStringLiteral("Lang");

Texts readTexts(const QDomElement &root, const QString &path, Report &report)
{
    Texts texts;
    texts.path = path;
    for (auto section = root.firstChildElement(); !section.isNull();
         section = section.nextSiblingElement()) {
        const QString name = section.tagName();
        if (texts.sections.contains(name)) {
            report.error(path, lineOf(section),
                         QStringLiteral("the section '%1' stands above already: only that one is "
                                        "read")
                             .arg(name));
            continue;
        }
        texts.sections.insert(name, lineOf(section));
        for (auto entry = section.firstChildElement(); !entry.isNull();
             entry = entry.nextSiblingElement()) {
            const auto key = qMakePair(name, entry.tagName());
            const QString place = name + QLatin1Char('/') + entry.tagName();
            if (texts.keys.contains(key))
                report.error(path, lineOf(entry),
                             QStringLiteral("'%1' stands above already").arg(place));
            else if (!entry.hasAttribute(QStringLiteral("value")))
                report.error(path, lineOf(entry),
                             QStringLiteral("'%1' has no attribute 'value'").arg(place));
            if (texts.keys.contains(key))
                continue;
            texts.keys.insert(key, lineOf(entry));
            texts.values.insert(key, entry.attribute(QStringLiteral("value")));
        }
    }
    return texts;
}

/** Whether two values that differ give different texts with a pattern. */
template <typename Moment>
bool tellsApart(const QString &pattern, const Moment &one, const Moment &other)
{
    return one.toString(pattern) != other.toString(pattern);
}

bool isTimePattern(const QString &pattern)
{
    const QTime time(3, 4, 5);
    return tellsApart(pattern, time, QTime(7, 4, 5)) && tellsApart(pattern, time, QTime(3, 8, 5));
}

bool isDatePattern(const QString &pattern)
{
    const QDate date(2021, 3, 5);
    return tellsApart(pattern, date, QDate(2034, 3, 5))
        && tellsApart(pattern, date, QDate(2021, 8, 5))
        && tellsApart(pattern, date, QDate(2021, 3, 17));
}

/** Checks an entry of the section "Lang". */
struct PresentationEntry
{
    const char *key;
    bool (*isGood)(const QString &);
    const char *problem;
};

constexpr const char *emptyKeyboard = "is an empty keyboard";

const PresentationEntry presentationEntries[] = {
    {"smallKeyboard", [](const QString &text) { return !text.isEmpty(); }, emptyKeyboard},
    {"bigKeyboard", [](const QString &text) { return !text.isEmpty(); }, emptyKeyboard},
    {"regionalSmallKeyboard", [](const QString &text) { return !text.isEmpty(); }, emptyKeyboard},
    {"regionalBigKeyboard", [](const QString &text) { return !text.isEmpty(); }, emptyKeyboard},
    {"timeFormat", isTimePattern, "shows no hour, or no minute"},
    {"dataFormat", isDatePattern, "shows no day, no month or no year"},
};

void checkPresentation(const Texts &texts, Report &report)
{
    for (const PresentationEntry &entry : presentationEntries) {
        const auto key = qMakePair(presentation, QString::fromLatin1(entry.key));
        const QString place = presentation + QLatin1Char('/') + QLatin1String(entry.key);
        if (!texts.keys.contains(key))
            report.error(texts.path, texts.sections.value(presentation),
                         QStringLiteral("there is no '%1'").arg(place));
        else if (!entry.isGood(texts.values.value(key)))
            report.error(texts.path, texts.keys.value(key),
                         QStringLiteral("'%1' %2").arg(place, QLatin1String(entry.problem)));
    }
}

/** Sections and keys of the other languages, each once, with the first language that has it. */
void checkWhatOthersHave(const QString &code, const LanguageTexts &languages, Report &report)
{
    const Texts &texts = languages[code];
    QMap<QString, QString> sections;
    QMap<QPair<QString, QString>, QString> keys;
    for (auto other = languages.begin(); other != languages.end(); ++other) {
        for (auto section = other->sections.begin(); section != other->sections.end(); ++section) {
            if (!texts.sections.contains(section.key()) && !sections.contains(section.key()))
                sections.insert(section.key(), other.key());
        }
        for (auto key = other->keys.begin(); key != other->keys.end(); ++key) {
            if (texts.sections.contains(key.key().first) && key.key().first != presentation
                && !texts.keys.contains(key.key()) && !keys.contains(key.key()))
                keys.insert(key.key(), other.key());
        }
    }
    for (auto section = sections.begin(); section != sections.end(); ++section)
        report.warning(
            texts.path,
            QStringLiteral("no section '%1', which %2 has").arg(section.key(), section.value()));
    for (auto key = keys.begin(); key != keys.end(); ++key)
        report.warning(texts.path, texts.sections.value(key.key().first),
                       QStringLiteral("no text '%1/%2', which %3 has")
                           .arg(key.key().first, key.key().second, key.value()));
}

/** Whether the model offers this language even if its folder is missing. */
bool alwaysOffers(const Internal::MeterModel &model, const QString &code)
{
    return Internal::wordsOf(model.languages).contains(code);
}

QStringList fixedLanguages()
{
    QStringList codes;
    for (const Internal::MeterModel &model : Internal::meterModels)
        codes += Internal::wordsOf(model.languages);
    codes.removeDuplicates();
    return codes;
}

bool isCode(const QString &name)
{
    static const QRegularExpression twoCapitals(QStringLiteral("^[A-Z]{2}$"));
    return twoCapitals.match(name).hasMatch();
}

} // namespace

QStringList languageCodes(const Image &image, const Places &places)
{
    QStringList codes = image.folders(places.languages);
    codes.erase(std::remove_if(codes.begin(), codes.end(),
                               [](const QString &name) { return !isCode(name); }),
                codes.end());
    return codes;
}

void checkLanguages(const Image &image, const Places &places, Report &report)
{
    const QStringList codes = image.folders(places.languages);
    const QStringList fixed = fixedLanguages();
    for (const QString &code : fixed) {
        const QString path = places.languages + code;
        if (codes.contains(code))
            continue;
        if (code == QLatin1String("EN"))
            report.error(path, QStringLiteral("missing: it is what every language falls back to"));
        else
            report.warning(path,
                           QStringLiteral("missing, but %1 offer it")
                               .arg(modelsThat([&code](const Internal::MeterModel &model) {
                                   return alwaysOffers(model, code);
                               })));
    }
    LanguageTexts languages;
    for (const QString &code : codes) {
        const QString path =
            places.languages + code + QLatin1Char('/') + code + QStringLiteral(".xml");
        if (!isCode(code))
            report.error(places.languages + code,
                         QStringLiteral("is offered as a language, but its name is no code of two "
                                        "capital letters"));
        const auto document = readDocument(image, path, report);
        if (document)
            languages.insert(code, readTexts(rootOf(*document), path, report));
    }
    for (auto language = languages.begin(); language != languages.end(); ++language) {
        checkPresentation(*language, report);
        checkWhatOthersHave(language.key(), languages, report);
    }
}

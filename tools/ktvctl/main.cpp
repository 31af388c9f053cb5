#include "Command.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QRegularExpression>
#include <QTextStream>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

/** In the order of the help page. */
const std::vector<Family> &families()
{
    static const std::vector<Family> all {
        infoFamily(),       settingsFamily(),   langFamily(),  helpFamily(),
        listsFamily(),      countersFamily(),   valueFamily(), diskFamily(),
        filenameFamily(),   firstStartFamily(), wifiFamily(),  usbFamily(),
        soundFamily(),      beepFamily(),       watchFamily(), factoryResetFamily(),
        checkImageFamily(),
    };
    return all;
}

bool isVerbose = false;

void showLog(QtMsgType, const QMessageLogContext &, const QString &line)
{
    if (isVerbose)
        QTextStream(stderr) << line << '\n';
}

/** As Qt 5 writes it; Qt 6 has an exponent wherever that is shorter, as in 1e-04. */
QByteArray toJson(double number)
{
    constexpr double wholeLimit = 18446744073709551616.; // 2^64
    const double size = std::abs(number);
    const bool isWhole = size < wholeLimit && number == std::floor(number);
    const bool isPlain = isWhole || (size >= 1e-4 && size < 1e-3);
    return QByteArray::number(number, isPlain ? 'f' : 'g', QLocale::FloatingPointShortest);
}

QByteArray toJson(const QJsonValue &value)
{
    if (value.isDouble())
        return toJson(value.toDouble());
    QByteArrayList parts;
    if (value.isArray()) {
        for (const QJsonValue part : value.toArray())
            parts += toJson(part);
        return '[' + parts.join(',') + ']';
    }
    if (value.isObject()) {
        const QJsonObject object = value.toObject();
        for (auto part = object.begin(); part != object.end(); ++part)
            parts += toJson(QJsonValue(part.key())) + ':' + toJson(part.value());
        return '{' + parts.join(',') + '}';
    }
    const QByteArray inArray = QJsonDocument(QJsonArray {value}).toJson(QJsonDocument::Compact);
    return inArray.mid(1, inArray.size() - 2);
}

QString usage(const Family &family, const Verb &verb)
{
    return QStringList {QStringLiteral("ktvctl"), QLatin1String(family.name),
                        QLatin1String(verb.name), QLatin1String(verb.arguments)}
        .filter(QRegularExpression(QStringLiteral(".")))
        .join(QLatin1Char(' '));
}

void printFamily(QTextStream &out, const Family &family)
{
    for (const Verb &verb : family.verbs)
        out << "  " << usage(family, verb).leftJustified(46) << ' ' << verb.summary << '\n';
}

int printHelp(const Family *family = nullptr)
{
    QTextStream out(stdout);
    out << "ktvctl: the meter's services from the command line\n\n";
    if (family) {
        out << family->summary << "\n\n";
        printFamily(out, *family);
    } else {
        for (const Family &one : families())
            printFamily(out, one);
    }
    out << "\nEvery command takes --json, --verbose (log lines on standard error) and --help,\n"
           "which says what is unwise while the interface runs; the first two may also stand\n"
           "before it. After -- every word is an argument, also one that begins with -.\n"
           "ktvctl --version prints the version.\n"
           "Exit codes: 0 done, 1 failed, 2 called wrongly, 3 waited in vain.\n";
    return Success;
}

bool fits(const QStringList &given, const QStringList &declared)
{
    const bool repeats = !declared.isEmpty() && declared.last().contains(QLatin1String("..."));
    const auto required = std::count_if(declared.begin(), declared.end(), [](const QString &word) {
        return !word.startsWith(QLatin1Char('['));
    });
    return given.size() >= required && (repeats || given.size() <= declared.size());
}

/**
 * The parser takes every argument that begins with '-' as an option. No option here is a digit, so
 * "-5" can only be a number: this character is put before it while arguments are parsed.
 */
const QChar numberMark(0xE000); // private use: never typed

QStringList withMarkedNumbers(QStringList words)
{
    static const QRegularExpression beforeNegative(QStringLiteral("^(?=-[.0-9])"));
    return words.replaceInStrings(beforeNegative, numberMark);
}

QString withoutMark(const QString &word)
{
    return word.startsWith(numberMark) ? word.mid(1) : word;
}

int runVerb(const Family &family, const Verb &verb, const QStringList &words)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QLatin1String(verb.summary) + QStringLiteral("\n\n")
                                     + QLatin1String(family.summary));
    parser.addOptions(verb.options);
    const QCommandLineOption json(QStringLiteral("json"),
                                  QStringLiteral("Print the answer as JSON."));
    const QCommandLineOption verbose(QStringLiteral("verbose"),
                                     QStringLiteral("Print the log lines on standard error."));
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Show this help."));
    parser.addOptions({json, verbose, help});
    const QStringList declared =
        QString::fromLatin1(verb.arguments).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (const QString &word : declared)
        parser.addPositionalArgument(word, QString(), word);
    if (!parser.parse(QStringList {QStringLiteral("ktvctl")} + withMarkedNumbers(words)))
        return misuse(parser.errorText());
    if (parser.isSet(help)) {
        QString text = parser.helpText();
        text.replace(QCoreApplication::arguments().first() + QStringLiteral(" [options]"),
                     usage(family, {verb.name, "", "", nullptr}) + QStringLiteral(" [options]"));
        QTextStream(stdout) << text;
        return Success;
    }
    if (!fits(parser.positionalArguments(), declared))
        return misuse(QStringLiteral("usage: ") + usage(family, verb));
    isVerbose = parser.isSet(verbose);
    const int code = verb.run(Call(parser));
    return code == Success && std::ferror(stdout) != 0
        ? fail(QStringLiteral("the answer cannot be written"))
        : code;
}

/** Whether the option may also be given before the command. */
bool isCommonOption(const QString &word)
{
    return word == QLatin1String("--json") || word == QLatin1String("--verbose");
}

bool asksForHelp(const QString &word)
{
    return word == QLatin1String("--help") || word == QLatin1String("-h");
}

/** @p common: options given before the family's name. */
int runFamily(const Family &family, const QStringList &words, const QStringList &common)
{
    if (family.verbs.front().name.isEmpty())
        return runVerb(family, family.verbs.front(), common + words);
    if (words.isEmpty() || asksForHelp(words.first())) {
        printHelp(&family);
        return words.isEmpty() ? UsageError : Success;
    }
    for (const Verb &verb : family.verbs) {
        const QStringList name = QString::fromLatin1(verb.name).split(QLatin1Char(' '));
        if (words.mid(0, name.size()) == name)
            return runVerb(family, verb, common + words.mid(name.size()));
    }
    return misuse(QStringLiteral("no command '%1 %2'; see ktvctl %1 --help")
                      .arg(QLatin1String(family.name), words.first()));
}

} // namespace

QStringList Call::arguments() const
{
    QStringList words = m_parser.positionalArguments();
    std::transform(words.begin(), words.end(), words.begin(), withoutMark);
    return words;
}

QString Call::option(const char *name) const
{
    return withoutMark(m_parser.value(QLatin1String(name)));
}

void Call::print(const QJsonValue &machine, const QString &human) const
{
    const QString answer = isSet("json") ? QString::fromUtf8(toJson(machine)) : human;
    if (answer.isNull())
        return;
    QTextStream(stdout) << answer << '\n';
    std::fflush(stdout);
}

void Call::print(const QStringList &words) const
{
    print(QJsonArray::fromStringList(words),
          words.isEmpty() ? QString() : words.join(QLatin1Char('\n')));
}

QString NamedValues::text() const
{
    int width = 0;
    for (const auto &row : m_rows)
        width = std::max(width, int(row.first.size()));
    if (m_rows.isEmpty())
        return {};
    QStringList lines;
    for (const auto &row : m_rows)
        lines += (row.first + QLatin1Char(':')).leftJustified(width + 2) + row.second;
    return lines.join(QLatin1Char('\n'));
}

QString yesOrNo(bool value)
{
    return value ? QStringLiteral("yes") : QStringLiteral("no");
}

QCommandLineOption serialOption(const char *description)
{
    return {QStringLiteral("serial"), QString::fromLatin1(description), QStringLiteral("NUMBER")};
}

void remark(const QString &text)
{
    QTextStream(stderr) << "ktvctl: " << text << '\n';
}

int fail(const QString &reason)
{
    remark(reason);
    return Failure;
}

int misuse(const QString &reason)
{
    fail(reason);
    return UsageError;
}

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    qInstallMessageHandler(showLog);
    QStringList words = QCoreApplication::arguments().mid(1);
    QStringList common;
    while (!words.isEmpty() && isCommonOption(words.first()))
        common += words.takeFirst();
    if (words.value(0) == QLatin1String("--version")) {
        QTextStream(stdout) << "ktvctl " KTV_VERSION "\n";
        return Success;
    }
    if (words.isEmpty() || asksForHelp(words.first())) {
        printHelp();
        return words.isEmpty() ? UsageError : Success;
    }
    const QString name = words.takeFirst();
    for (const Family &family : families()) {
        if (name == QLatin1String(family.name))
            return runFamily(family, words, common);
    }
    return misuse(QStringLiteral("no command '%1'; see ktvctl --help").arg(name));
}

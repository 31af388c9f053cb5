#pragma once

#include <QCommandLineParser>
#include <QJsonValue>
#include <QString>
#include <QStringList>
#include <QVector>

#include <vector>

/** Exit codes of ktvctl. */
enum ExitCode
{
    Success = 0,
    Failure = 1,
    UsageError = 2,
    TimedOut = 3 ///< the time to wait has passed
};

/** The parsed command line. */
class Call
{
public:
    explicit Call(const QCommandLineParser &parser) : m_parser(parser) { }

    /** Positional argument; null if it is an optional one that is missing. */
    QString argument(int index) const { return arguments().value(index); }
    QStringList arguments() const;
    bool isSet(const char *option) const { return m_parser.isSet(QLatin1String(option)); }
    QString option(const char *name) const;

    /**
     * Prints the answer at once: @p machine with --json, else the lines of @p human; nothing if
     * that text is null.
     */
    void print(const QJsonValue &machine, const QString &human) const;
    /** Prints an array with --json, else one line for each word. */
    void print(const QStringList &words) const;

private:
    const QCommandLineParser &m_parser;
};

/** Lines with a name and a value each; the values are aligned in a column. */
class NamedValues
{
public:
    void add(const QString &name, const QString &value) { m_rows.append({name, value}); }
    void add(const char *name, const QString &value) { add(QString::fromLatin1(name), value); }
    QString text() const; ///< null if there are no lines

private:
    QVector<QPair<QString, QString>> m_rows;
};

QString yesOrNo(bool value);

/** The option --serial. */
QCommandLineOption serialOption(const char *description);

/** Prints a remark on standard error. */
void remark(const QString &text);
/** Prints a reason on standard error. @return Failure */
int fail(const QString &reason);
/** The same for a call with wrong arguments. @return UsageError */
int misuse(const QString &reason);

/** One command of ktvctl: `ktvctl FAMILY VERB ARGUMENTS`. */
struct Verb
{
    QByteArray name; ///< one word or two; empty: the family's name alone is the command
    QByteArray arguments; ///< as help shows them: "KEY [VALUE] [NAME...]"
    const char *summary;
    int (*run)(const Call &call);
    QList<QCommandLineOption> options = {};
};

/** The verbs of one service. Each family has a file of its own, `NameCommands.cpp`. */
struct Family
{
    const char *name;
    const char *summary;
    std::vector<Verb> verbs;
};

Family beepFamily();
Family checkImageFamily();
Family countersFamily();
Family diskFamily();
Family factoryResetFamily();
Family filenameFamily();
Family firstStartFamily();
Family helpFamily();
Family infoFamily();
Family langFamily();
Family listsFamily();
Family settingsFamily();
Family soundFamily();
Family usbFamily();
Family valueFamily();
Family watchFamily();
Family wifiFamily();

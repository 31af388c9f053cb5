#pragma once

#include <QCommandLineParser>
#include <QJsonValue>
#include <QString>
#include <QStringList>

#include <vector>

/** Exit codes of ktvctl. */
enum ExitCode
{
    Success = 0,
    Failure = 1,
    UsageError = 2
};

/** What a user has typed, parsed. */
class Call
{
public:
    explicit Call(const QCommandLineParser &parser) : m_parser(parser) { }

    /** Positional argument; null where an optional one was left out. */
    QString argument(int index) const { return m_parser.positionalArguments().value(index); }
    QStringList arguments() const { return m_parser.positionalArguments(); }
    bool isSet(const char *option) const { return m_parser.isSet(QLatin1String(option)); }
    QString option(const char *name) const { return m_parser.value(QLatin1String(name)); }

    /** Prints the answer: @p machine with --json, else @p human, each with a line end. */
    void print(const QJsonValue &machine, const QString &human) const;

private:
    const QCommandLineParser &m_parser;
};

/** Prints a reason on standard error. @return Failure */
int fail(const QString &reason);
/** The same for a call whose words are off. @return UsageError */
int misuse(const QString &reason);

/** One thing that ktvctl does: `ktvctl FAMILY VERB ARGUMENTS`. */
struct Verb
{
    const char *name; ///< empty: the family's name alone is the command
    const char *arguments; ///< as help shows them: "KEY [VALUE] [NAME...]"
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

Family countersFamily();

#include "support/Meter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__)
/**
 * The sanitizers test by means of a pipe whether memory can be read. Without a free descriptor they
 * reported a wrong type of each object that they had to test, so their pipe may exceed the limit.
 */
extern "C" int pipe(int *ends) noexcept
{
    rlimit limit {};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    rlimit higher = limit;
    higher.rlim_cur = std::min(limit.rlim_cur + 2, limit.rlim_max);
    ::setrlimit(RLIMIT_NOFILE, &higher);
    const auto result = int(::syscall(SYS_pipe2, ends, 0));
    ::setrlimit(RLIMIT_NOFILE, &limit);
    return result;
}
#endif

namespace Meter {

namespace {

const QLatin1String marker("/run/meter/inside");
const QLatin1String journalFile("/run/meter/journal");
const QLatin1String behaviourDirectory("/run/meter/behaviour/");

} // namespace

bool isInside()
{
    if (QFile::exists(marker) && qgetenv("KTV_METER") == "1")
        return true;
    std::fputs("This test runs in the simulated meter only: ./meter test\n", stderr);
    return false;
}

QStringList journal()
{
    return QString::fromUtf8(readFile(journalFile))
        .replace(QLatin1Char('\t'), QLatin1Char(' '))
        .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

void clearJournal()
{
    writeFile(journalFile, QByteArray());
}

void setBehaviour(const QString &program, const QByteArray &lines)
{
    if (lines.isEmpty())
        QFile::remove(behaviourDirectory + program);
    else
        writeFile(behaviourDirectory + program, lines + '\n');
}

void hideProgram(const QString &program)
{
    QProcess::execute(QStringLiteral("meter-hide"), {program});
}

void showProgram(const QString &program)
{
    QProcess::execute(QStringLiteral("meter-show"), {program});
}

void recordProgram(const QString &program)
{
    QProcess::execute(QStringLiteral("meter-record"), {program});
}

void replaceProgram(const QString &program, const QByteArray &script)
{
    const QString file = QStringLiteral("/run/meter/bin/") + program;
    QFile::remove(file); // a link to the stand-in
    writeFile(file, "#!/bin/busybox sh\n. /opt/meter/lib/stand-in.sh\n" + script + '\n');
    QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

QStringList processes(const QString &name)
{
    // Not with pgrep, because tests ask often, and starting a program takes longer than this.
    QStringList ids;
    for (const QString &id : QDir(QStringLiteral("/proc")).entryList({QStringLiteral("[0-9]*")})) {
        if (readFile(QStringLiteral("/proc/%1/comm").arg(id)).trimmed() == name.toUtf8())
            ids += id;
    }
    return ids;
}

void killProcesses(const QString &name)
{
    for (const QString &id : processes(name))
        ::kill(id.toInt(), SIGKILL);
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeFile(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(path));
}

FewDescriptors::FewDescriptors(int left)
{
    // A low limit, so that only a few descriptors have to be opened.
    rlimit limit {};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = 100;
    ::setrlimit(RLIMIT_NOFILE, &limit);
    for (int one = ::dup(0); one >= 0; one = ::dup(0))
        m_taken.push_back(one);
    for (; left > 0; --left) {
        ::close(m_taken.back());
        m_taken.pop_back();
    }
}

FewDescriptors::~FewDescriptors()
{
    for (const int one : m_taken)
        ::close(one);
    rlimit limit {};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);
}

} // namespace Meter

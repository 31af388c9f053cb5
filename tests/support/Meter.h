#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QtTest>

#include <vector>

/** The simulated meter, for the tests that run in it. */
namespace Meter {

/** How long a test waits for an event that must come, in milliseconds; reached only by failures. */
constexpr int patience = 60000;

/** Whether this process runs in the simulated meter; if not, prints that on standard error. */
bool isInside();

/** Calls of stand-in programs so far, each "program argument argument". */
QStringList journal();
void clearJournal();

/** Sets the behaviour of a stand-in program: lines such as "hang=1"; empty for the normal one. */
void setBehaviour(const QString &program, const QByteArray &lines);

/** Removes a program from the PATH, and puts it back. */
void hideProgram(const QString &program);
void showProgram(const QString &program);

/** Makes calls of a real program appear in the journal, too, until showProgram(). */
void recordProgram(const QString &program);
/** Replaces a program by a shell script, whose calls are in the journal, until showProgram(). */
void replaceProgram(const QString &program, const QByteArray &script);

/** Ids of the running processes of that name. */
QStringList processes(const QString &name);
void killProcesses(const QString &name);

QByteArray readFile(const QString &path);
/** Writes a whole file and creates its directories. */
void writeFile(const QString &path, const QByteArray &content);

/** Leaves only a number of free descriptors to this process while this object exists. */
class FewDescriptors
{
public:
    explicit FewDescriptors(int left);
    ~FewDescriptors();
    Q_DISABLE_COPY_MOVE(FewDescriptors)

private:
    std::vector<int> m_taken;
};

} // namespace Meter

// Qt's own macros give up after 5 s, which is too short on a busy machine. These end as soon as the
// condition is true, so only failures take longer.
#undef QTRY_VERIFY
#undef QTRY_VERIFY2
#undef QTRY_COMPARE
#define QTRY_VERIFY(condition) QTRY_VERIFY_WITH_TIMEOUT((condition), Meter::patience)
#define QTRY_VERIFY2(condition, message)                                                           \
    QTRY_VERIFY2_WITH_TIMEOUT((condition), (message), Meter::patience)
#define QTRY_COMPARE(actual, expected)                                                             \
    QTRY_COMPARE_WITH_TIMEOUT((actual), (expected), Meter::patience)

/** main() of a test program: refuses to run outside the simulated meter. */
#define KTV_METER_TEST_MAIN(TestClass) KTV_METER_TEST_MAIN_OF(QCoreApplication, TestClass)
#define KTV_METER_TEST_MAIN_OF(Application, TestClass)                                             \
    int main(int argc, char *argv[])                                                               \
    {                                                                                              \
        if (!Meter::isInside())                                                                    \
            return 1;                                                                              \
        Application application(argc, argv);                                                       \
        TestClass test;                                                                            \
        return QTest::qExec(&test, argc, argv);                                                    \
    }

#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QtTest>

#include <vector>

/** The simulated meter, as a test inside it sees it. */
namespace Meter {

/** How long a test waits for what must come, in milliseconds: a limit for failures. */
constexpr int patience = 60000;

/** Whether this process runs inside the simulated meter; says so on standard error if not. */
bool isInside();

/** Calls of stand-in programs so far, each "program argument argument". */
QStringList journal();
void clearJournal();

/** Tells a stand-in program how to behave: lines such as "hang=1"; empty for as usual. */
void setBehaviour(const QString &program, const QByteArray &lines);

/** Takes a program off the PATH, and puts it back. */
void hideProgram(const QString &program);
void showProgram(const QString &program);

/** Has calls of a real program written to the journal, too; showProgram() ends that. */
void recordProgram(const QString &program);
/** Puts a shell script, journal included, in a program's place; showProgram() ends that. */
void replaceProgram(const QString &program, const QByteArray &script);

/** Ids of the running processes of that name. */
QStringList processes(const QString &name);

QByteArray readFile(const QString &path);
/** Writes a file whole, creating its directories. */
void writeFile(const QString &path, const QByteArray &content);

/** Leaves this process so many descriptors, or all that it had when it goes. */
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

// Qt's own give up after 5 s, which a busy machine may need. They end as soon as the event is
// there: only what fails takes longer.
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

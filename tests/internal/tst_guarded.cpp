#include "internal/Guarded_p.h"
#include "support/LogCapture.h"

#include <QtTest>

#include <stdexcept>

using Internal::guarded;

/** Exceptions of an operation are logged and go no further. */
class TstGuarded : public QObject
{
    Q_OBJECT
private slots:
    void resultOfTheOperation();
    void exceptionsAreLogged();
};

void TstGuarded::resultOfTheOperation()
{
    const LogCapture log;
    bool hasRun = false;
    guarded("a: ", [&hasRun] { hasRun = true; });
    QVERIFY(hasRun);
    QCOMPARE(guarded("a: ", [] { return 5; }), 5);
    QCOMPARE(guarded("a: ", 7, [] { return 5; }), 5);
    QCOMPARE(log.lines(), QStringList());
}

void TstGuarded::exceptionsAreLogged()
{
    const auto fail = []() -> int { throw std::runtime_error("full"); };
    const LogCapture log;
    guarded("a: ", [] { throw std::bad_alloc(); });
    QCOMPARE(guarded(QString("b:"), fail), 0);
    QCOMPARE(guarded("c ", 7, fail), 7);
    QCOMPARE(log.lines(), QStringList({"a: std::bad_alloc", "b:full", "c full"}));
}

QTEST_GUILESS_MAIN(TstGuarded)
#include "tst_guarded.moc"

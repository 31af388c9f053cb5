#include "internal/BackgroundWork_p.h"
#include "support/Meter.h"

#include <QSemaphore>
#include <QThreadPool>
#include <QtConcurrentRun>
#include <QtTest>

#include <chrono>
#include <thread>

using Internal::EndlessWork;

/**
 * EndlessWork: a run knows its future from the start, does not take a thread from others, and can
 * be stopped.
 */
class TstBackgroundWork : public QObject
{
    Q_OBJECT
private slots:
    void init() { QThreadPool::globalInstance()->setMaxThreadCount(1); }
    void cleanup();

    void knowsItsOwnFuture();
    void leavesThreadsToOthers();
    void startsThoughThePoolIsBusy();
    void stopEndsEveryRun();
    void waitingRunsDoNotStartAfterStop();
    void cancelledBeforeItStarts();
    void stopWithoutRuns();
    void sleepLastsUntilItsEnd();
    void sleepEndsEarly_data();
    void sleepEndsEarly();
    void stopsAllAtOnce();

private:
    static void runUntilStopped(const EndlessWork &work)
    {
        while (!work.isStopping())
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    QFuture<void> handle;
};

void TstBackgroundWork::cleanup()
{
    // The pool has as many threads as before.
    QThreadPool::globalInstance()->waitForDone();
    QTRY_COMPARE(QThreadPool::globalInstance()->activeThreadCount(), 0);
}

void TstBackgroundWork::knowsItsOwnFuture()
{
    EndlessWork work(handle);
    for (int i = 0; i < 500; ++i) {
        std::atomic<bool> isOwn {false};
        handle = QFuture<void>(); // counts as cancelled
        work.start([&work, &isOwn] { isOwn = !work.handle().isCanceled(); });
        handle.waitForFinished();
        QVERIFY(isOwn);
    }
}

void TstBackgroundWork::leavesThreadsToOthers()
{
    EndlessWork work(handle);
    work.start([&work] { runUntilStopped(work); });
    QFuture<void> other = QtConcurrent::run([] {});
    QTRY_VERIFY(other.isFinished());
    QVERIFY(handle.isRunning());
    work.stop();
    QVERIFY(handle.isFinished());
}

void TstBackgroundWork::startsThoughThePoolIsBusy()
{
    QSemaphore release;
    QFuture<void> other = QtConcurrent::run([&release] { release.acquire(); });
    EndlessWork work(handle);
    QSemaphore begun;
    work.start([&begun] { begun.release(); });
    const bool hasBegun = begun.tryAcquire(1, Meter::patience);
    release.release(); // also after a failure, or the work would never end
    other.waitForFinished();
    QVERIFY(hasBegun);
}

void TstBackgroundWork::stopEndsEveryRun()
{
    EndlessWork work(handle);
    std::atomic<int> running {0};
    for (int i = 0; i < 3; ++i) {
        work.start([&work, &running] {
            ++running;
            runUntilStopped(work);
            --running;
        });
    }
    QTRY_COMPARE(running.load(), 3);
    work.stop();
    QCOMPARE(running.load(), 0);
    QVERIFY(!work.isStopping()); // ready for the next run
}

void TstBackgroundWork::waitingRunsDoNotStartAfterStop()
{
    QSemaphore release;
    QFuture<void> busy[2];
    for (QFuture<void> &one : busy)
        one = QtConcurrent::run([&release] { release.acquire(); });
    // The second task gets the thread that EndlessWork adds to the pool.
    EndlessWork work(handle);
    std::atomic<int> begun {0};
    work.start([&begun] { ++begun; });
    work.stop();
    QVERIFY(handle.isFinished());
    QVERIFY(handle.isCanceled());
    release.release(2);
    QThreadPool::globalInstance()->waitForDone();
    QCOMPARE(begun.load(), 0);
}

void TstBackgroundWork::cancelledBeforeItStarts()
{
    QSemaphore release;
    QThreadPool::globalInstance()->start([&release] { release.acquire(); });
    QThreadPool::globalInstance()->start([&release] { release.acquire(); });
    EndlessWork work(handle);
    std::atomic<int> begun {0};
    work.start([&begun] { ++begun; });
    handle.cancel();
    release.release(2);
    handle.waitForFinished();
    QThreadPool::globalInstance()->waitForDone();
    QCOMPARE(begun.load(), 0);
}

void TstBackgroundWork::stopWithoutRuns()
{
    int calls = 0;
    EndlessWork work(handle, [&calls] { ++calls; });
    work.stop();
    QCOMPARE(calls, 1);
}

void TstBackgroundWork::sleepLastsUntilItsEnd()
{
    EndlessWork work(handle);
    qint64 rested = 0;
    work.start([&work, &rested] {
        QElapsedTimer timer;
        timer.start();
        work.sleepUntil(QDeadlineTimer(100), [] { return false; });
        rested = timer.elapsed();
    });
    handle.waitForFinished();
    QVERIFY2(rested >= 100, QByteArray::number(rested));
}

void TstBackgroundWork::sleepEndsEarly_data()
{
    QTest::addColumn<bool>("isStopped");
    QTest::newRow("when it is over") << false;
    QTest::newRow("when it is stopped") << true;
}

void TstBackgroundWork::sleepEndsEarly()
{
    QFETCH(bool, isStopped);
    std::atomic<int> askings {0};
    std::atomic<bool> isOver {false};
    EndlessWork work(handle);
    work.start([&work, &askings, &isOver] {
        work.sleepUntil(QDeadlineTimer(QDeadlineTimer::Forever), [&askings, &isOver] {
            ++askings;
            return isOver.load();
        });
    });
    QTRY_VERIFY(askings >= 2); // not before the condition is true
    QVERIFY(handle.isRunning());
    if (isStopped)
        work.stop();
    else
        isOver = true;
    QTRY_VERIFY(handle.isFinished());
    isOver = true; // ends the work even after a failure
}

void TstBackgroundWork::stopsAllAtOnce()
{
    static int calls = 0;
    static const int owner = 0;
    Internal::stopBeforeExit(&owner, [] { ++calls; });
    Internal::stopBeforeExit(&owner, [] { ++calls; });
    Internal::stopBackgroundWork();
    QCOMPARE(calls, 1);
}

QTEST_GUILESS_MAIN(TstBackgroundWork)
#include "tst_background_work.moc"

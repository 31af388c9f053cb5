#include "support/LogCapture.h"
#include "support/Meter.h"

#include <datasource/KTV_DataSource.h>
#include <sound/BuzzerClass.h>

#include <QtConcurrentRun>
#include <QtTest>

#include <atomic>
#include <csignal>
#include <thread>
#include <vector>

using Buzzer::BeepParameter;
using Buzzer::BuzzerClass;
using SoundNamespace::Sound;

Q_DECLARE_METATYPE(Buzzer::BuzzerClass::Tone)

namespace {

const QString samples = QStringLiteral("/etc/wav/");

QString text(const QList<BeepParameter> &steps)
{
    QStringList texts;
    for (const BeepParameter &step : steps)
        texts += QStringLiteral("%1/%2/%3/%4")
                     .arg(step.frequency)
                     .arg(step.length)
                     .arg(step.delay)
                     .arg(step.repeats);
    return texts.join(", ");
}

BuzzerClass::Tone tone(int code)
{
    return BuzzerClass::Tone(code);
}

const QString longBeep = QStringLiteral("beep -f 2470 -l 600 -d 200 -r 2");
const QString shortBeep = QStringLiteral("beep -f 1400 -l 100 -d 0 -r 1");

// The whole melody, because checks of its length and range would not notice a wrong step.
const QString melodySteps = QStringLiteral(
    "330/100/100/1, 330/100/300/2, 262/100/100/1, 330/100/300/1, 392/100/700/1, 196/100/700/1, "
    "262/200/100/1, 330/100/100/1, 392/100/100/1, 523/300/150/1, 494/100/100/1, 440/100/100/1, "
    "392/300/300/1, 440/200/100/1, 349/100/100/1, 440/100/100/1, 392/300/150/1, 330/100/100/1, "
    "262/100/100/1, 294/300/400/1, 262/200/100/1, 330/100/100/1, 392/100/100/1, 523/300/150/1, "
    "587/100/100/1, 523/100/100/1, 440/300/300/1, 392/200/100/1, 330/100/100/1, 294/100/100/1, "
    "262/300/150/1, 196/100/100/1, 262/300/700/1, 349/200/100/1, 440/100/100/1, 523/100/100/1, "
    "698/300/150/1, 659/100/100/1, 587/100/100/1, 523/300/300/1, 466/200/100/1, 587/100/100/1, "
    "523/100/100/1, 440/300/150/1, 349/100/100/1, 392/100/100/1, 440/300/400/1, 349/200/100/1, "
    "440/100/100/1, 523/100/100/1, 587/300/150/1, 523/100/100/1, 466/100/100/1, 440/300/300/1, "
    "392/200/100/1, 440/100/100/1, 392/100/100/1, 349/300/150/1, 330/100/100/1, 294/100/100/1, "
    "392/300/1300/1, 262/200/100/1, 330/100/100/1, 392/100/100/1, 523/300/150/1, 494/100/100/1, "
    "440/100/100/1, 392/300/300/1, 440/200/100/1, 349/100/100/1, 440/100/100/1, 392/300/150/1, "
    "330/100/100/1, 262/100/100/1, 294/300/400/1, 523/200/100/1, 659/100/100/1, 784/100/100/1, "
    "1046/300/150/1, 784/100/100/1, 659/100/100/1, 523/300/300/1, 165/300/200/1, 196/300/200/1, "
    "220/300/200/1, 175/300/200/1, 196/300/200/1, 247/300/200/1, 262/300/600/1, 784/200/100/1, "
    "659/200/100/1, 523/200/100/1, 392/200/100/1, 440/200/100/1, 698/200/100/1, 587/200/100/1, "
    "440/200/100/1, 494/200/100/1, 698/200/100/1, 880/200/100/1, 698/200/100/1, 587/200/100/1, "
    "494/300/500/1, 262/100/50/1, 294/100/50/1, 330/100/50/1, 349/100/50/1, 392/100/50/1, "
    "440/100/50/1, 494/100/50/1, 523/100/50/1, 587/100/50/1, 659/100/50/1, 698/100/50/1, "
    "784/100/50/1, 330/100/50/1, 349/100/50/1, 392/100/50/1, 440/100/50/1, 494/100/50/1, "
    "523/100/50/1, 587/100/50/1, 659/100/50/1, 698/100/50/1, 784/100/50/1, 880/100/50/1, "
    "932/150/250/1, 880/150/250/1, 932/100/575/1, 932/100/125/1, 932/100/125/1, 1046/675/0/1");

const QString stepIsOver = QStringLiteral("/tmp/step-over");

} // namespace

/** Signal tones: their tables, and the order of requests. */
class TstBuzzer : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();

    void table_data();
    void table();
    void melody();
    void models_data();
    void models();
    void tablesAreFilledOnce();
    void soundOff();

    void singleTone();
    void everyStepInItsOrder();
    void singleToneIsDroppedWhileAnotherSounds();
    void repeatedToneReplacesTheCurrentOne();
    void silence();
    void silenceEndsATuneBetweenItsSteps_data();
    void silenceEndsATuneBetweenItsSteps();
    void silenceWithoutATone();
    void toneOutsideTheTable();
    void missingBeep();
    void failingBeep();
    void clearInterface();
    void onOneCore();
    void requestsFromManyThreads();
    void fewDescriptorsLeft_data();
    void fewDescriptorsLeft();

    void samplesOnSamplingModels_data();
    void samplesOnSamplingModels();
    void silenceDoesNotEndARepeatedSample();
    void unknownToneBeepsOnSamplingModels();

    void freeEndsATone();
    void freeEndsASample();
    void facade();

private:
    static QStringList beeps();
    /** Makes each step sound until stepIsOver exists. */
    static void holdSteps();
    /** Requests a tone, and ends the current step after the request has cancelled its tone. */
    static bool cancelsTheCurrentOne(int code, bool loop);
};

void TstBuzzer::initTestCase()
{
    QCOMPARE(BuzzerClass::_pathtoWave, samples); // before anything else
    QVERIFY(BuzzerClass::toneDefinition.isEmpty());
    QVERIFY(BuzzerClass::toneTranscode.isEmpty());
    QVERIFY(!BuzzerClass::playWave);
    QVERIFY(!BuzzerClass::pernamentOff);
    QVERIFY(BuzzerClass::future.isFinished());
    for (const char *program : {"aplay", "killall"})
        Meter::recordProgram(program);
}

void TstBuzzer::init()
{
    BuzzerClass::BuzzerClass_Initialiser(KTV_Configuration::KTV_420, samples, false);
    Meter::clearJournal();
}

void TstBuzzer::cleanup()
{
    BuzzerClass::BuzzerClass_Free();
    QVERIFY(BuzzerClass::future.isFinished());
    Meter::showProgram("beep");
    Meter::setBehaviour("beep", {});
    QTRY_COMPARE(Meter::processes("beep"), QStringList());
    QFile::remove(stepIsOver);
}

void TstBuzzer::holdSteps()
{
    Meter::replaceProgram("beep", "until [ -e /tmp/step-over ]; do pause 0.01; done");
}

bool TstBuzzer::cancelsTheCurrentOne(int code, bool loop)
{
    std::thread other([code, loop] { BuzzerClass::Beep(tone(code), loop); });
    const bool isCancelled =
        QTest::qWaitFor([] { return BuzzerClass::future.isCanceled(); }, Meter::patience);
    Meter::writeFile(stepIsOver, {});
    other.join();
    return isCancelled;
}

QStringList TstBuzzer::beeps()
{
    QStringList found;
    for (const QString &call : Meter::journal()) {
        if (call.startsWith("beep "))
            found += call;
    }
    return found;
}

void TstBuzzer::table_data()
{
    QTest::addColumn<QString>("steps");
    QTest::addColumn<Sound::Sample>("sample");
    QTest::newRow("0") << "0/0/0/0" << Sound::SOUND_Empty;
    QTest::newRow("1") << "1400/100/0/1" << Sound::SOUND_SET_DECLINE;
    QTest::newRow("2") << "750/500/0/1" << Sound::SOUND_USER_MUST_DECIDE;
    QTest::newRow("3") << "1400/100/30/1" << Sound::SOUND_SET_DECLINE;
    QTest::newRow("4") << "2470/600/200/2" << Sound::SOUND_MEAS_END_WITH_FAIL;
    QTest::newRow("5") << "2470/600/200/2" << Sound::SOUND_MEAS_END_WITH_FAIL;
    QTest::newRow("6") << "1400/100/100/3" << Sound::SOUND_MEAS_END_WITH_PASS;
    QTest::newRow("7") << "2470/600/200/2" << Sound::SOUND_FUSE_TEST;
    QTest::newRow("8") << "2470/600/200/2" << Sound::SOUND_USER_MUST_DECIDE;
    QTest::newRow("9") << "750/100/100/1, 1000/100/100/1, 1400/100/0/1" << Sound::SOUND_ERROR;
    QTest::newRow("10") << "2470/500/0/1, 1976/500/0/1" << Sound::SOUND_ERROR;
    QTest::newRow("11") << "2470/500/0/1, 1976/500/0/1" << Sound::SOUND_ERROR;
    QTest::newRow("12") << "750/500/0/1" << Sound::SOUND_USER_MUST_DECIDE;
    QTest::newRow("13") << "1308/200/2/1, 1469/200/2/1, 2470/300/0/1" << Sound::SOUND_MEM_WRITE;
}

void TstBuzzer::table()
{
    const BuzzerClass::Tone code = tone(QByteArray(QTest::currentDataTag()).toInt());
    QTEST(text(BuzzerClass::toneDefinition.value(code)), "steps");
    QVERIFY(BuzzerClass::toneTranscode.contains(code));
    QTEST(BuzzerClass::toneTranscode.value(code), "sample");
    QCOMPARE(BuzzerClass::toneDefinition.size(), 15);
    QCOMPARE(BuzzerClass::toneTranscode.size(), 15);
}

void TstBuzzer::melody()
{
    const QList<BeepParameter> steps = BuzzerClass::toneDefinition.value(tone(14));
    QCOMPARE(BuzzerClass::toneTranscode.value(tone(14)), Sound::sheep);
    QCOMPARE(text(steps).split(", "), melodySteps.split(", "));
}

void TstBuzzer::models_data()
{
    QTest::addColumn<KTV_Configuration::MeterModels>("model");
    QTest::addColumn<bool>("playsWave");
    QTest::newRow("none") << KTV_Configuration::MeterModels_NaN << false;
    QTest::newRow("KTV-410") << KTV_Configuration::KTV_410 << false;
    QTest::newRow("KTV-420") << KTV_Configuration::KTV_420 << false;
    QTest::newRow("KTV-4200") << KTV_Configuration::KTV_4200 << true;
    QTest::newRow("KTV-4400") << KTV_Configuration::KTV_4400 << true;
    QTest::newRow("PLX-420") << KTV_Configuration::PLX_420 << false;
}

void TstBuzzer::models()
{
    QFETCH(KTV_Configuration::MeterModels, model);
    QFETCH(bool, playsWave);
    BuzzerClass::_pathtoWave = "/before/";
    BuzzerClass::BuzzerClass_Initialiser(model, "/after/", false);
    QCOMPARE(BuzzerClass::playWave, playsWave);
    QCOMPARE(BuzzerClass::_pathtoWave, playsWave ? "/after/" : "/before/");
}

void TstBuzzer::tablesAreFilledOnce()
{
    BuzzerClass::toneDefinition.remove(tone(3));
    BuzzerClass::toneTranscode.remove(tone(3));
    BuzzerClass::BuzzerClass_Initialiser(KTV_Configuration::KTV_4200, samples, false);
    QCOMPARE(BuzzerClass::toneDefinition.size(), 14);
    QCOMPARE(BuzzerClass::toneTranscode.size(), 14);
    BuzzerClass::BuzzerClass_Free();
    QVERIFY(BuzzerClass::toneDefinition.isEmpty());
    QVERIFY(BuzzerClass::toneTranscode.isEmpty());
    BuzzerClass::BuzzerClass_Initialiser(KTV_Configuration::KTV_4200, samples, false);
    QCOMPARE(BuzzerClass::toneDefinition.size(), 15);
}

void TstBuzzer::soundOff()
{
    const LogCapture log;
    for (const auto model : {KTV_Configuration::KTV_420, KTV_Configuration::KTV_4200}) {
        BuzzerClass::BuzzerClass_Initialiser(model, samples, true);
        QVERIFY(BuzzerClass::pernamentOff);
        QVERIFY(Sound::pernamentOFF);
        const QMutexLocker turn(&BuzzerClass::mutex); // a request that is ignored does not lock it
        for (int code = 0; code < 15; ++code) {
            BuzzerClass::Beep(tone(code), false);
            BuzzerClass::Beep(tone(code), true);
        }
    }
    QVERIFY(!Sound::process);
    QCOMPARE(Meter::journal(), QStringList());
    QCOMPARE(log.lines(), QStringList());
    BuzzerClass::BuzzerClass_Initialiser(KTV_Configuration::KTV_420, samples, false);
    QVERIFY(!Sound::pernamentOFF);
}

void TstBuzzer::singleTone()
{
    const LogCapture log;
    BuzzerClass::Beep(tone(1), false);
    QTRY_VERIFY(BuzzerClass::future.isFinished());
    QCOMPARE(Meter::journal(), QStringList({shortBeep, "killall beep"}));
    QCOMPARE(log.lines().first(), "BuzzerClass::Beep play");
    for (const QString &line : log.lines().mid(1))
        QCOMPARE(line, "czekam...");
}

void TstBuzzer::everyStepInItsOrder()
{
    BuzzerClass::Beep(tone(9), false);
    QTRY_VERIFY(BuzzerClass::future.isFinished());
    QCOMPARE(Meter::journal(),
             QStringList({"beep -f 750 -l 100 -d 100 -r 1", "killall beep",
                          "beep -f 1000 -l 100 -d 100 -r 1", "killall beep", shortBeep,
                          "killall beep"}));
}

void TstBuzzer::singleToneIsDroppedWhileAnotherSounds()
{
    holdSteps();
    BuzzerClass::Beep(tone(4), false);
    BuzzerClass::Beep(tone(1), false);
    Meter::writeFile(stepIsOver, {});
    QTRY_VERIFY(BuzzerClass::future.isFinished());
    QCOMPARE(beeps(), QStringList(longBeep));
    BuzzerClass::Beep(tone(1), false);
    QTRY_COMPARE(beeps(), QStringList({longBeep, shortBeep}));
}

void TstBuzzer::repeatedToneReplacesTheCurrentOne()
{
    holdSteps();
    const LogCapture log;
    BuzzerClass::Beep(tone(4), false);
    QTRY_COMPARE(beeps().size(), 1);
    QVERIFY(cancelsTheCurrentOne(1, true));
    QTRY_VERIFY(beeps().size() >= 4); // over and over
    QCOMPARE(beeps().mid(0, 4), QStringList({longBeep, shortBeep, shortBeep, shortBeep}));
    // The current step has ended by itself; then come the worker's killall and that of the request.
    QCOMPARE(Meter::journal().mid(0, 4),
             QStringList({longBeep, "killall beep", "killall beep", shortBeep}));
    BuzzerClass::Beep(tone(4), true);
    QTRY_COMPARE(beeps().last(), longBeep);
    BuzzerClass::Beep(tone(1), false); // dropped: the other tone goes on
    QTRY_VERIFY(beeps().count(longBeep) >= 3);
    QCOMPARE(beeps().last(), longBeep);
    QStringList lines = log.lines();
    lines.removeAll("czekam...");
    QCOMPARE(lines,
             QStringList({"BuzzerClass::Beep play", "BuzzerClass::Beep repeat",
                          "BuzzerClass::Beep repeat", "BuzzerClass::Beep play"}));
}

void TstBuzzer::silence()
{
    holdSteps();
    BuzzerClass::Beep(tone(4), true);
    QTRY_COMPARE(beeps().size(), 1);
    const LogCapture log;
    QVERIFY(cancelsTheCurrentOne(0, false));
    QVERIFY(BuzzerClass::future.isFinished());
    QVERIFY(BuzzerClass::future.isCanceled());
    QCOMPARE(Meter::journal(), QStringList({longBeep, "killall beep", "killall beep"}));
    QCOMPARE(log.lines(), QStringList("BuzzerClass::Beep tone empty"));
}

void TstBuzzer::silenceEndsATuneBetweenItsSteps_data()
{
    QTest::addColumn<bool>("loop");
    QTest::newRow("single") << false;
    QTest::newRow("repeated") << true;
}

void TstBuzzer::silenceEndsATuneBetweenItsSteps()
{
    QFETCH(bool, loop);
    holdSteps();
    BuzzerClass::Beep(tone(9), loop); // three steps
    QTRY_COMPARE(beeps().size(), 1);
    QVERIFY(cancelsTheCurrentOne(0, false));
    QVERIFY(BuzzerClass::future.isFinished());
    QCOMPARE(Meter::journal(),
             QStringList({"beep -f 750 -l 100 -d 100 -r 1", "killall beep", "killall beep"}));
}

void TstBuzzer::silenceWithoutATone()
{
    const LogCapture log;
    BuzzerClass::Beep(tone(0), true);
    QCOMPARE(log.lines(), QStringList("BuzzerClass::Beep tone empty"));
    QCOMPARE(Meter::journal(), QStringList());
}

void TstBuzzer::toneOutsideTheTable()
{
    BuzzerClass::Beep(tone(15), false);
    QTRY_VERIFY(BuzzerClass::future.isFinished());
    BuzzerClass::Beep(tone(-1), true);
    QVERIFY(BuzzerClass::future.isRunning());
    BuzzerClass::Beep(tone(0), false);
    QCOMPARE(Meter::journal(), QStringList("killall beep"));
}

void TstBuzzer::missingBeep()
{
    Meter::hideProgram("beep");
    BuzzerClass::Beep(tone(1), false);
    QTRY_VERIFY(BuzzerClass::future.isFinished());
    QCOMPARE(Meter::journal(), QStringList("killall beep"));

    Meter::clearJournal();
    Meter::setBehaviour("killall", "delay=0.2"); // longer than the tone, but no tone
    QElapsedTimer repeating;
    repeating.start();
    BuzzerClass::Beep(tone(1), true);
    QTRY_VERIFY(Meter::journal().size() >= 3);
    BuzzerClass::Beep(tone(0), false);
    const qint64 rounds = Meter::journal().size() - 1;
    QVERIFY2(rounds <= repeating.elapsed() / 500 + 1, QByteArray::number(rounds));
}

void TstBuzzer::failingBeep()
{
    Meter::replaceProgram("beep", "exit 1");
    QElapsedTimer repeating;
    repeating.start();
    BuzzerClass::Beep(tone(4), true); // a tone of 1200 ms
    QTRY_VERIFY(beeps().size() >= 3);
    QVERIFY2(beeps().size() <= repeating.elapsed() / 1200 + 1, QByteArray::number(beeps().size()));
}

void TstBuzzer::clearInterface()
{
    BuzzerClass::ClearBeepInterface();
    QTRY_COMPARE(Meter::journal(), QStringList({"beep -f 1 -l 0", "killall beep"}));
}

void TstBuzzer::onOneCore()
{
    QThreadPool *const pool = QThreadPool::globalInstance();
    const int threads = pool->maxThreadCount();
    pool->setMaxThreadCount(1);
    BuzzerClass::Beep(tone(1), true);
    QFuture<void> other = QtConcurrent::run([] {});
    QTRY_VERIFY(other.isFinished());
    QVERIFY(BuzzerClass::future.isRunning());
    pool->setMaxThreadCount(threads);
}

void TstBuzzer::requestsFromManyThreads()
{
    for (const auto model : {KTV_Configuration::KTV_420, KTV_Configuration::KTV_4400}) {
        BuzzerClass::BuzzerClass_Initialiser(model, samples, false);
        constexpr int count = 4;
        std::vector<std::thread> callers;
        callers.reserve(count);
        std::atomic<int> done {0};
        // The thread sanitizer blocks signals in threads that wait for a mutex, as these do. Qt
        // learns of a child's end by a signal, so this thread must be able to receive it.
        sigset_t childEnds;
        sigset_t before;
        ::sigemptyset(&childEnds);
        ::sigaddset(&childEnds, SIGCHLD);
        ::pthread_sigmask(SIG_BLOCK, &childEnds, &before);
        for (int i = 0; i < count; ++i) {
            callers.emplace_back([i, &done] {
                BuzzerClass::Beep(tone(1), i % 2 == 0);
                BuzzerClass::Beep(tone(0), true);
                ++done;
            });
        }
        ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
        QTRY_COMPARE(done.load(), count);
        for (std::thread &caller : callers)
            caller.join();
        BuzzerClass::Beep(tone(0), true);
        QVERIFY(BuzzerClass::future.isFinished());
        QVERIFY(!Sound::process);
    }
    QTRY_COMPARE(Meter::processes("aplay"), QStringList());
}

void TstBuzzer::fewDescriptorsLeft_data()
{
    QTest::addColumn<int>("left");
    for (const int left : {0, 1, 2, 3, 4, 6, 10, 20})
        QTest::addRow("%d", left) << left;
}

void TstBuzzer::fewDescriptorsLeft()
{
    QFETCH(int, left);
    QThreadPool::globalInstance()->waitForDone(); // the next thread needs descriptors
    {
        const Meter::FewDescriptors few(left);
        for (const auto model : {KTV_Configuration::KTV_420, KTV_Configuration::KTV_4200}) {
            BuzzerClass::BuzzerClass_Initialiser(model, samples, false);
            for (const bool loop : {false, true})
                BuzzerClass::Beep(tone(1), loop);
            BuzzerClass::Beep(tone(0), true);
        }
    }
    BuzzerClass::BuzzerClass_Initialiser(KTV_Configuration::KTV_420, samples, false);
    Meter::clearJournal();
    BuzzerClass::Beep(tone(1), false);
    QTRY_COMPARE(beeps(), QStringList("beep -f 1400 -l 100 -d 0 -r 1"));
}

void TstBuzzer::samplesOnSamplingModels_data()
{
    QTest::addColumn<KTV_Configuration::MeterModels>("model");
    QTest::newRow("KTV-4200") << KTV_Configuration::KTV_4200;
    QTest::newRow("KTV-4400") << KTV_Configuration::KTV_4400;
}

void TstBuzzer::samplesOnSamplingModels()
{
    QFETCH(KTV_Configuration::MeterModels, model);
    BuzzerClass::BuzzerClass_Initialiser(model, samples, false);
    Sound::SoundEnable = false; // signal tones are played all the same
    const LogCapture log;
    QStringList expected;
    for (int code = 1; code < 15; ++code) {
        BuzzerClass::Beep(tone(code), false);
        expected += "aplay -t raw -f S16_LE -r 44100 /etc/wav/"
            + Sound::SampleToString(BuzzerClass::toneTranscode.value(tone(code))) + ".raw";
        // The next request ends the player, which may not have reached the journal yet.
        QTRY_COMPARE(Meter::journal().filter("aplay"), expected);
    }
    Sound::SoundEnable = true;
    BuzzerClass::Beep(tone(0), false);
    QVERIFY(!Sound::process);
    QCOMPARE(beeps(), QStringList());
    QCOMPARE(log.lines(), QStringList());
}

void TstBuzzer::silenceDoesNotEndARepeatedSample()
{
    BuzzerClass::BuzzerClass_Initialiser(KTV_Configuration::KTV_4200, samples, false);
    BuzzerClass::Beep(tone(2), true);
    QVERIFY(Sound::_isLoop);
    BuzzerClass::Beep(tone(0), false);
    QVERIFY(Sound::_isLoop);
    BuzzerClass::Beep(tone(0), true);
    QVERIFY(!Sound::_isLoop);
    QVERIFY(!Sound::process);
}

void TstBuzzer::unknownToneBeepsOnSamplingModels()
{
    BuzzerClass::BuzzerClass_Initialiser(KTV_Configuration::KTV_4200, samples, false);
    const LogCapture log;
    BuzzerClass::Beep(tone(15), false);
    QTRY_VERIFY(BuzzerClass::future.isFinished());
    QCOMPARE(log.lines().first(), "BuzzerClass::Beep play");
    QCOMPARE(Meter::journal(), QStringList());
}

void TstBuzzer::freeEndsATone()
{
    Meter::setBehaviour("beep", "hang=1");
    BuzzerClass::Beep(tone(9), true);
    QTRY_COMPARE(beeps().size(), 1);
    BuzzerClass::BuzzerClass_Free();
    QVERIFY(BuzzerClass::future.isFinished());
    QCOMPARE(Meter::processes("beep"), QStringList());
    QCOMPARE(beeps().size(), 1);
}

void TstBuzzer::freeEndsASample()
{
    BuzzerClass::BuzzerClass_Initialiser(KTV_Configuration::KTV_4200, samples, false);
    BuzzerClass::Beep(tone(2), true);
    QVERIFY(Sound::process);
    BuzzerClass::BuzzerClass_Free();
    QVERIFY(!Sound::process);
    QTRY_COMPARE(Meter::processes("aplay"), QStringList());
}

void TstBuzzer::facade()
{
    BuzzerClass::BuzzerClass_Free();
    {
        KTV_DataSource facade;
        QCOMPARE(BuzzerClass::toneDefinition.size(), 15);
        QVERIFY(!BuzzerClass::playWave); // no model yet
        facade.setMeterSerialName("DV0001");
        QVERIFY(BuzzerClass::playWave);
        QCOMPARE(BuzzerClass::_pathtoWave, samples);
        facade.setMeterSerialName("CH0001");
        QVERIFY(!BuzzerClass::playWave);
        facade.Buzzer(BuzzerClass::Tone_Alarm, true);
        QTRY_COMPARE(beeps().size(), 1);
    }
    QVERIFY(BuzzerClass::toneDefinition.isEmpty());
    QVERIFY(BuzzerClass::future.isFinished());
    QCOMPARE(Meter::processes("beep"), QStringList());
}

KTV_METER_TEST_MAIN(TstBuzzer)
#include "tst_buzzer.moc"

#include "support/LogCapture.h"
#include "support/Meter.h"

#include <datasource/KTV_DataSource.h>
#include <sound/Sound.h>

#include <QtConcurrent>
#include <QtTest>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>
#include <utility>

using SoundNamespace::Sound;

/** The player of samples, with the real aplay and a loudspeaker that records. */
class TstSound : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();

    void names_data();
    void names();
    void playsOnce();
    void playsOverAndOver();
    void errorsOfThePlayerDoNotHaltTheLoop();
    void outputOfThePlayerIsLimited_data();
    void outputOfThePlayerIsLimited();
    void silenceDoesNotEndALoop();
    void silenceEndsASingleSample();
    void newSoundEndsThePrevious_data();
    void newSoundEndsThePrevious();
    void switches_data();
    void switches();
    void pathIsOneArgument();
    void missingPlayer();
    void missingShell();
    void missingPkill();
    void hangingPkill();
    void playersThatCannotBeKilled();
    void loopThatCannotBePlayedIsHalted_data();
    void loopThatCannotBePlayedIsHalted();
    void nothingToKill();
    void killsLoopsOfOthers();
    void indentedIdsAreNotFound();
    void volume_data();
    void volume();
    void missingMixer();
    void fromTwoThreads();
    void playersOfThreadsWithoutEventLoop();
    void playersThatAnotherThreadEnds();
    void endsWithTheFacade();

private:
    static QStringList calls(const QString &program);
    /** Recordings of the loudspeaker, one file for each player. */
    static QFileInfoList recordings();
    static int openDescriptors();
    /** The latest recording. */
    static QByteArray latestRecording();

    const QByteArray searchPath = qgetenv("PATH");
};

namespace {

const QString samples = QStringLiteral("/etc/wav/");
const QString longSamples = QStringLiteral("/tmp/minutes/"); // still sound when a test goes on
const QString once = QStringLiteral("aplay -t raw -f S16_LE -r 44100 ");

} // namespace

void TstSound::initTestCase()
{
    QVERIFY(Sound::SoundEnable); // before anything else
    QVERIFY(!Sound::pernamentOFF);
    QVERIFY(!Sound::_isLoop);
    QVERIFY(!Sound::process);
    for (const char *program : {"aplay", "sh", "pkill", "killall", "kill", "cat"})
        Meter::recordProgram(program);
    for (const char *sample : {"intro", "sheep"})
        Meter::writeFile(longSamples + sample + ".raw", QByteArray(60 * 44100 * 2, '\0'));
}

void TstSound::init()
{
    for (const QFileInfo &file : recordings())
        QFile::remove(file.filePath());
    Meter::clearJournal();
}

void TstSound::cleanup()
{
    qputenv("PATH", searchPath);
    for (const char *program : {"aplay", "pkill", "amixer", "ps"}) {
        Meter::showProgram(program);
        Meter::setBehaviour(program, {});
    }
    for (const char *program : {"aplay", "pkill"})
        Meter::recordProgram(program);
    Sound::pernamentOFF = false;
    Sound::SoundEnable = true;
    Sound::KillProcess();
    for (const char *program : {"aplay", "cat"})
        QTRY_COMPARE(Meter::processes(program), QStringList());
}

QStringList TstSound::calls(const QString &program)
{
    QStringList found;
    for (const QString &call : Meter::journal()) {
        if (call == program || call.startsWith(program + ' '))
            found += call;
    }
    return found;
}

QFileInfoList TstSound::recordings()
{
    return QDir("/run/meter/audio").entryInfoList(QDir::Files, QDir::Name);
}

QByteArray TstSound::latestRecording()
{
    const QFileInfoList files = recordings();
    return files.isEmpty() ? QByteArray() : Meter::readFile(files.last().filePath());
}

void TstSound::names_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("name");
    const QStringList names {"SOUND_Empty",
                             "SOUND_DELETED_BANK",
                             "SOUND_ERROR",
                             "SOUND_ERROR_SHORT",
                             "SOUND_ESC_STOP_MEAS",
                             "SOUND_FUSE_TEST",
                             "SOUND_MEAS_END_WITH_FAIL",
                             "SOUND_MEAS_END_WITH_PASS",
                             "SOUND_MEM_WRITE",
                             "SOUND_Riso_CURRENT_LIMIT",
                             "SOUND_SET_ACCEPT",
                             "SOUND_SET_DECLINE",
                             "SOUND_USER_MUST_DECIDE",
                             "intro",
                             "sheep"};
    for (int i = 0; i < names.size(); ++i)
        QTest::newRow(qPrintable(names[i])) << i << names[i];
    QTest::newRow("below the first") << -1 << "";
    QTest::newRow("above the last") << 15 << "";
}

void TstSound::names()
{
    QFETCH(int, value);
    QTEST(Sound::SampleToString(Sound::Sample(value)), "name");
}

void TstSound::playsOnce()
{
    const LogCapture log;
    Sound::Play(Sound::SOUND_ERROR_SHORT, false, false, samples);
    QVERIFY(Sound::process);
    QVERIFY(!Sound::_isLoop);
    QTRY_COMPARE(Sound::process->state(), QProcess::NotRunning); // it ends by itself
    QVERIFY(Sound::process);
    QCOMPARE(Meter::journal(), QStringList(once + "/etc/wav/SOUND_ERROR_SHORT.raw"));
    const QByteArray sample = Meter::readFile("/etc/wav/SOUND_ERROR_SHORT.raw");
    QVERIFY(sample.size() > 1000);
    QCOMPARE(latestRecording().left(sample.size()), sample);

    Sound::KillProcess(); // pkill finds no process
    QVERIFY(!Sound::process);
    QCOMPARE(calls("pkill"), QStringList());
    QCOMPARE(log.lines(), QStringList());
}

void TstSound::playsOverAndOver()
{
    const LogCapture log;
    Sound::Play(Sound::SOUND_ERROR_SHORT, true, false, samples);
    QVERIFY(Sound::process);
    QVERIFY(Sound::_isLoop);
    const QByteArray sample = Meter::readFile("/etc/wav/SOUND_ERROR_SHORT.raw");
    QTRY_VERIFY(latestRecording().size() > 2 * sample.size());
    QVERIFY(latestRecording().startsWith(sample + sample));
    QCOMPARE(calls("sh"),
             QStringList("sh -c while true; do cat /etc/wav/SOUND_ERROR_SHORT.raw; done  | aplay "
                         "-t raw -f S16_LE -r 44100"));

    const QString id = QString::number(Sound::process->processId());
    Sound::KillProcess();
    QCOMPARE(calls("pkill"), QStringList("pkill -P " + id));
    QVERIFY(!Sound::process);
    QVERIFY(!Sound::_isLoop);
    QTRY_COMPARE(Meter::processes("aplay"), QStringList());
    QCOMPARE(log.lines(), QStringList());
}

void TstSound::errorsOfThePlayerDoNotHaltTheLoop()
{
    Meter::replaceProgram("aplay",
                          "for i in $(seq 100); do echo 'underrun!!!' >&2; done\n"
                          "exec /usr/bin/aplay \"$@\"");
    Sound::Play(Sound::SOUND_ERROR_SHORT, true, false, samples);
    const int size = int(Meter::readFile("/etc/wav/SOUND_ERROR_SHORT.raw").size());
    QTRY_VERIFY(latestRecording().size() > 2 * size);
}

void TstSound::outputOfThePlayerIsLimited_data()
{
    QTest::addColumn<QByteArray>("player");
    QTest::addColumn<bool>("loop");
    for (const bool loop : {false, true}) {
        const char *const name = loop ? "loop" : "single";
        QTest::addRow("%s, output", name) << QByteArray("exec yes") << loop;
        QTest::addRow("%s, complaints", name) << QByteArray("exec yes >&2") << loop;
    }
}

void TstSound::outputOfThePlayerIsLimited()
{
    QFETCH(QByteArray, player);
    QFETCH(bool, loop);
    Meter::replaceProgram("aplay", player);
    Sound::Play(Sound::SOUND_ERROR, loop, false, samples);
    QProcess *const process = Sound::process;
    int news = 0;
    qint64 most = 0;
    const auto look = [process, &news, &most] {
        ++news;
        for (const auto channel : {QProcess::StandardError, QProcess::StandardOutput}) {
            process->setReadChannel(channel);
            most = std::max(most, process->bytesAvailable());
        }
    };
    connect(process, &QProcess::readyReadStandardOutput, this, look);
    connect(process, &QProcess::readyReadStandardError, this, look);
    QTRY_VERIFY(news > 200); // a pipe holds up to 64 KiB
    QVERIFY2(most <= 65536, QByteArray::number(most));
    Sound::KillProcess();
    QTRY_COMPARE(Meter::processes("yes"), QStringList());
}

void TstSound::silenceDoesNotEndALoop()
{
    Sound::Play(Sound::SOUND_ERROR, true, false, samples);
    Sound::Play(Sound::SOUND_Empty, false, false, samples);
    // A request that is ignored does not end it, either.
    Sound::pernamentOFF = true;
    Sound::Play(Sound::intro, false, true, samples);
    Sound::pernamentOFF = false;
    Sound::SoundEnable = false;
    Sound::Play(Sound::intro, false, false, samples);
    QVERIFY(Sound::process);
    QVERIFY(Sound::_isLoop);
    QVERIFY(Sound::process->state() == QProcess::Running);
    // A repeated sample can be ended even while sound is disabled.
    Sound::Play(Sound::SOUND_Empty, true, false, samples);
    QVERIFY(!Sound::process);
    QVERIFY(!Sound::_isLoop);
}

void TstSound::silenceEndsASingleSample()
{
    Sound::Play(Sound::intro, false, false, longSamples);
    const QString id = QString::number(Sound::process->processId());
    Sound::Play(Sound::SOUND_Empty, false, false, samples);
    QVERIFY(!Sound::process);
    QCOMPARE(calls("pkill"), QStringList("pkill -P " + id));
}

void TstSound::newSoundEndsThePrevious_data()
{
    QTest::addColumn<bool>("formerLoops");
    QTest::addColumn<bool>("loops");
    QTest::newRow("single, single") << false << false;
    QTest::newRow("single, loop") << false << true;
    QTest::newRow("loop, single") << true << false;
    QTest::newRow("loop, loop") << true << true;
}

void TstSound::newSoundEndsThePrevious()
{
    QFETCH(bool, formerLoops);
    QFETCH(bool, loops);
    Sound::Play(Sound::intro, formerLoops, false, longSamples);
    const QString id = QString::number(Sound::process->processId());
    // Until the sound starts, aplay has child processes of the same name.
    QTRY_COMPARE(recordings().size(), 1);
    const QStringList former = Meter::processes("aplay");
    QCOMPARE(former.size(), 1);
    Sound::Play(Sound::sheep, loops, false, longSamples);
    QCOMPARE(calls("pkill"), QStringList("pkill -P " + id));
    QCOMPARE(Sound::_isLoop, loops);
    QTRY_COMPARE(recordings().size(), 2);
    QTRY_COMPARE(Meter::processes("aplay").size(), 1);
    QVERIFY(Meter::processes("aplay") != former);
}

void TstSound::switches_data()
{
    QTest::addColumn<bool>("off");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<bool>("force");
    QTest::addColumn<bool>("sounds");
    QTest::newRow("as usual") << false << true << false << true;
    QTest::newRow("disabled") << false << false << false << false;
    QTest::newRow("disabled, forced") << false << false << true << true;
    QTest::newRow("off") << true << true << false << false;
    QTest::newRow("off, forced") << true << true << true << false;
}

void TstSound::switches()
{
    QFETCH(bool, off);
    QFETCH(bool, enabled);
    QFETCH(bool, force);
    QFETCH(bool, sounds);
    Sound::pernamentOFF = off;
    Sound::SoundEnable = enabled;
    for (const bool loop : {false, true}) {
        Sound::Play(Sound::SOUND_ERROR, loop, force, samples);
        QCOMPARE(Sound::process != nullptr, sounds);
        QCOMPARE(Sound::_isLoop, sounds && loop);
    }
    if (!off)
        return;
    Sound::Play(Sound::SOUND_Empty, true, force, samples);
    QCOMPARE(Meter::journal(), QStringList());
}

void TstSound::pathIsOneArgument()
{
    const QString directory = "/tmp/a \"b c\" -d 9/set-"; // a prefix, not a directory
    QVERIFY(QFileInfo(directory).dir().mkpath("."));
    QVERIFY(QFile::copy("/etc/wav/SOUND_ERROR.raw", directory + "SOUND_ERROR.raw"));
    Meter::replaceProgram("aplay", "for word; do echo \"$word\"; done >/tmp/words");
    Sound::Play(Sound::SOUND_ERROR, false, false, directory);
    QTRY_VERIFY(Meter::readFile("/tmp/words").endsWith(".raw\n"));
    QCOMPARE(Meter::readFile("/tmp/words"),
             "-t\nraw\n-f\nS16_LE\n-r\n44100\n" + directory.toUtf8() + "SOUND_ERROR.raw\n");
}

void TstSound::missingPlayer()
{
    Meter::hideProgram("aplay");
    const LogCapture log;
    Sound::_beep("/etc/wav/intro.raw");
    QVERIFY(!Sound::process);
    QCOMPARE(Meter::journal(), QStringList());
    QCOMPARE(log.lines(), QStringList());
}

void TstSound::missingShell()
{
    qputenv("PATH", "/nowhere");
    const LogCapture log;
    Sound::_loopBeep("/etc/wav/intro.raw");
    QVERIFY(Sound::process); // kept until the next sound
    QVERIFY(!Sound::_isLoop);
    QCOMPARE(log.lines(), QStringList("Sound::_loopBeep: waitForStarted error:"));
}

void TstSound::missingPkill()
{
    Sound::Play(Sound::intro, true, false, samples);
    QTRY_VERIFY(!latestRecording().isEmpty());
    Meter::hideProgram("pkill");
    const LogCapture log;
    Sound::KillProcess();
    QCOMPARE(log.lines(),
             QStringList({"Sound::KillProcess(): start pkill no run at 1s",
                          "Sound::KillProcess(): stop pkill no at 1s"}));
    QTRY_COMPARE(Meter::processes("aplay"), QStringList()); // ended all the same
}

void TstSound::hangingPkill()
{
    Sound::Play(Sound::intro, true, false, samples);
    Meter::setBehaviour("pkill", "hang=1");
    const LogCapture log;
    Sound::KillProcess();
    QCOMPARE(log.lines(), QStringList("Sound::KillProcess(): stop pkill no at 1s"));
    QVERIFY(!Sound::process);
}

void TstSound::playersThatCannotBeKilled()
{
    Meter::replaceProgram("aplay", "exec " UNKILLABLE " /tmp/note");
    QStringList ids;
    for (int i = 0; i < 4; ++i) {
        QFile::remove("/tmp/note");
        Sound::Play(Sound::intro, false, false, samples);
        QTRY_VERIFY(Meter::readFile("/tmp/note").endsWith('\n'));
        ids += QString::fromLatin1(Meter::readFile("/tmp/note")).trimmed();
        Sound::KillProcess();
        // The player still runs although the call has returned.
        QVERIFY(!Sound::process);
        QVERIFY(QFile::exists("/proc/" + ids.last()));
    }
    Sound::Play(Sound::intro, false, false, samples);
    QVERIFY(!Sound::process); // no further one is started
    Meter::killProcesses("unkillable");
    Meter::recordProgram("aplay");
    const auto playsAgain = [] {
        Sound::Play(Sound::intro, false, false, samples);
        return Sound::process != nullptr;
    };
    for (const QString &id : std::as_const(ids))
        QTRY_VERIFY(playsAgain() && !QFile::exists("/proc/" + id));
}

void TstSound::loopThatCannotBePlayedIsHalted_data()
{
    QTest::addColumn<QByteArray>("player");
    QTest::addColumn<QString>("file");
    QTest::addColumn<bool>("hasEventLoop");
    const QByteArray missing;
    const QByteArray asUsual = "exec /usr/bin/aplay \"$@\"";
    const QString intro = "/etc/wav/intro.raw";
    QTest::newRow("no player") << missing << intro << true;
    QTest::newRow("no player, no event loop") << missing << intro << false;
    QTest::newRow("no file") << asUsual << "/etc/wav/none.raw" << true;
    QTest::newRow("no file, no event loop") << asUsual << "/etc/wav/none.raw" << false;
    QTest::newRow("empty file") << asUsual << "/tmp/empty.raw" << true;
    QTest::newRow("player breaks down at once") << QByteArray("exit 1") << intro << true;
    QTest::newRow("player breaks down later")
        << QByteArray("/usr/bin/head -c 200000 >/dev/null") << intro << true;
}

void TstSound::loopThatCannotBePlayedIsHalted()
{
    QFETCH(QByteArray, player);
    QFETCH(QString, file);
    QFETCH(bool, hasEventLoop);
    if (player.isEmpty())
        Meter::hideProgram("aplay");
    else
        Meter::replaceProgram("aplay", player);
    Meter::writeFile("/tmp/empty.raw", {});
    if (hasEventLoop)
        Sound::_loopBeep(file);
    else
        std::thread([&file] { Sound::_loopBeep(file); }).join();
    QVERIFY(Sound::_isLoop);
    QVERIFY(Sound::process);
    const QString status = QStringLiteral("/proc/%1/status").arg(Sound::process->processId());
    QTRY_VERIFY(Meter::readFile(status).contains("State:\tT"));
    const int tries = int(calls("cat").size());
    QVERIFY2(tries < (hasEventLoop ? 500 : 50), QByteArray::number(tries));
}

void TstSound::nothingToKill()
{
    Sound::_isLoop = true;
    Sound::KillProcess();
    QVERIFY(!Sound::_isLoop);
    QCOMPARE(Meter::journal(), QStringList());
}

void TstSound::killsLoopsOfOthers()
{
    QVERIFY(QProcess::startDetached("/bin/sh",
                                    {"-c",
                                     "while true; do cat /etc/wav/intro.raw; done | "
                                     "/usr/bin/aplay -t raw -f S16_LE -r 44100 -q"}));
    QTRY_VERIFY(!latestRecording().isEmpty());
    // Unlike that of busybox, this list has the ids at the start of the line: the shell's and the
    // loop's.
    Meter::replaceProgram("ps", "exec /usr/bin/pgrep -a -f '/etc/wav/[i]ntro'");
    Sound::Play(Sound::sheep, true, false, samples);
    QTRY_COMPARE(calls("aplay").size(), 1);
    Meter::clearJournal();
    const LogCapture log;
    Sound::KillProcess2();
    QCOMPARE(calls("sh"), QStringList("sh -c ps | grep \"[s]h -c while true; do cat /etc/wav/\""));
    QCOMPARE(calls("killall"), QStringList("killall aplay"));
    QCOMPARE(calls("pkill"), QStringList());
    QVERIFY(!Sound::process);
    QVERIFY(!Sound::_isLoop);

    // There is a third id if the loop was just starting cat.
    const QStringList lines = log.lines();
    QVERIFY2(lines.size() >= 3, qPrintable(lines.join('\n')));
    QCOMPARE(lines.last(), "KILL2: PID:"); // from the empty text after the last line feed
    QTRY_COMPARE(calls("kill").size(), lines.size());
    for (const QString &line : lines.mid(0, lines.size() - 1)) {
        const QString id = line.mid(QStringLiteral("KILL2: PID:").size());
        QVERIFY(id.toInt() > 0);
        QVERIFY(calls("kill").contains("kill " + id));
        QTRY_VERIFY(!QFile::exists("/proc/" + id));
    }
    QVERIFY(calls("kill").contains("kill"));
}

void TstSound::indentedIdsAreNotFound()
{
    Sound::Play(Sound::sheep, true, false, samples);
    const LogCapture log;
    Sound::KillProcess2(); // the ids have less than five digits, as on a device just after its
                           // start
    for (const QString &line : log.lines())
        QCOMPARE(line, "KILL2: PID:");
    QVERIFY(log.lines().size() >= 2);
    QCOMPARE(calls("killall"), QStringList("killall aplay"));
    QVERIFY(!Sound::process);
}

void TstSound::volume_data()
{
    QTest::addColumn<int>("percent");
    QTest::addColumn<QString>("set");
    QTest::newRow("below 0") << -5 << "0%";
    QTest::newRow("0") << 0 << "0%";
    QTest::newRow("between") << 42 << "42%";
    QTest::newRow("100") << 100 << "100%";
    QTest::newRow("above 100") << 150 << "100%";
}

void TstSound::volume()
{
    QFETCH(int, percent);
    QFETCH(QString, set);
    const LogCapture log;
    Sound::SetVolumme(percent);
    QCOMPARE(Meter::journal(), QStringList("amixer set DAC R&L " + set));
    QCOMPARE(Meter::readFile("/run/meter/volume").trimmed() + '%', set.toLatin1());
    QCOMPARE(log.lines(), QStringList());
}

void TstSound::missingMixer()
{
    Meter::hideProgram("amixer");
    const LogCapture log;
    Sound::SetVolumme(50);
    QCOMPARE(log.lines(), QStringList("Sound::SetVolumme() no finish!"));
}

void TstSound::fromTwoThreads()
{
    const LogCapture log;
    for (int i = 0; i < 5; ++i) {
        std::thread([] { Sound::Play(Sound::intro, true, false, samples); }).join();
        QVERIFY(Sound::process);
        Sound::Play(Sound::sheep, true, false, samples);
        std::thread([] { Sound::Play(Sound::SOUND_Empty, true, false, samples); }).join();
        QVERIFY(!Sound::process);
    }
    QTRY_COMPARE(Meter::processes("aplay"), QStringList());
    QCOMPARE(calls("pkill").size(), 10);
    QCOMPARE(log.lines(), QStringList());
}

int TstSound::openDescriptors()
{
    return int(QDir("/proc/self/fd").entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size());
}

void TstSound::playersOfThreadsWithoutEventLoop()
{
    constexpr int threads = 4;
    QThreadPool pool;
    pool.setMaxThreadCount(threads);
    pool.setExpiryTimeout(-1);
    std::mutex turn;
    std::atomic<int> begun {0};
    std::atomic<int> done {0};
    const auto play = [&turn, &begun, &done] {
        ++begun;
        while (begun % threads != 0) // so that each thread runs one task
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        for (int tone = 0; tone < 5; ++tone) {
            // The thread sanitizer blocks signals in threads that wait for a mutex, and Qt learns
            // of a child's end by a signal.
            while (!turn.try_lock())
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            const std::lock_guard<std::mutex> lock(turn, std::adopt_lock);
            Sound::Play(Sound::SOUND_ERROR, false, false, samples);
        }
        ++done;
    };
    QVector<QFuture<void>> tasks; // not waited for
    int before = 0;
    for (const int round : {1, 2}) {
        for (int i = 0; i < threads; ++i)
            tasks += QtConcurrent::run(&pool, play);
        QTRY_COMPARE(done.load(), round * threads); // waiting for the pool would end its threads
        Sound::KillProcess();
        if (round == 1) // each thread has its own descriptors by now
            before = openDescriptors();
    }
    // Fewer than one for every twentieth player; Qt itself opens and closes one now and then.
    QVERIFY2(openDescriptors() < before + 3, QByteArray::number(openDescriptors() - before));
}

void TstSound::playersThatAnotherThreadEnds()
{
    const int before = openDescriptors();
    for (int i = 0; i < 10; ++i) { // this thread does not reach its event loop meanwhile
        Sound::Play(Sound::SOUND_ERROR, false, false, samples);
        std::thread([] { Sound::KillProcess(); }).join();
    }
    constexpr int ofOne = 5;
    QVERIFY(openDescriptors() <= before + ofOne);
    QTRY_COMPARE(openDescriptors(), before);
}

void TstSound::endsWithTheFacade()
{
    {
        const KTV_DataSource facade;
        Sound::Play(Sound::intro, true, false, samples);
        QTRY_VERIFY(!latestRecording().isEmpty());
    }
    QVERIFY(!Sound::process);
    QTRY_COMPARE(Meter::processes("aplay"), QStringList());
}

KTV_METER_TEST_MAIN(TstSound)
#include "tst_sound.moc"

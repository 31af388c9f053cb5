#include "HangingCommand.h"
#include "support/Meter.h"
#include "wifi/Tools.h"

#include <sound/BuzzerClass.h>
#include <sound/Sound.h>
#include <tools/Tools.h>
#include <wifi/KTV_Connection.h>

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>
#include <memory>

using Buzzer::BuzzerClass;
using SoundNamespace::Sound;
using Usb = QERNTools::Tools;
using WiFi::KTV_Connection;

namespace {

using Operation = std::function<void()>;

constexpr int withoutLimit = HangingCommand::withoutLimit;

BuzzerClass::Tone tone(int number)
{
    return BuzzerClass::Tone(number);
}

} // namespace

Q_DECLARE_METATYPE(Operation)

/** How long the library waits for tools that hang. */
class TstHangingTools : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();

    void limitOfSilence();
    void limitOfAPlayersStart_data();
    void limitOfAPlayersStart();
    void limits_data();
    void limits();

private:
    const QTemporaryDir m_directory;
    std::unique_ptr<KTV_Connection> m_wifi;
};

void TstHangingTools::initTestCase()
{
    Tools::reset();
    for (const char *program : {"killall", "pkill", "ps", "wpa_passphrase"})
        Meter::recordProgram(program);
    BuzzerClass::BuzzerClass_Initialiser(KTV_Configuration::KTV_410, {}, false);
    m_wifi = std::make_unique<KTV_Connection>(m_directory.path() + '/');
    QVERIFY(m_wifi->AddNetwork("Office", "12345678"));
}

void TstHangingTools::init()
{
    if (Usb::getCurrentMode() != Usb::USB_RS232)
        QProcess::execute("modprobe-usb-gadget", {"g_serial"});
    if (m_wifi->getInterfaceName().isEmpty())
        m_wifi->findWifiInterfaceName();
    Tools::connected();
}

void TstHangingTools::cleanup()
{
    for (const QString &program : QDir("/run/meter/behaviour").entryList(QDir::Files))
        Meter::setBehaviour(program, {});
    Meter::killProcesses("mactool");
}

void TstHangingTools::limitOfSilence()
{
    Meter::setBehaviour("killall", "hang=1");
    BuzzerClass::Beep(tone(1), true);
    QTRY_VERIFY(Meter::journal().contains("killall beep")); // the worker, which has no limit
    const HangingCommand hanging("killall beep");
    BuzzerClass::Beep(tone(0), false);
    QCOMPARE(hanging.waits(), QList<int>({withoutLimit, 30000}));
}

void TstHangingTools::limitOfAPlayersStart_data()
{
    QTest::addColumn<bool>("loop");
    QTest::newRow("once") << false;
    QTest::newRow("over and over") << true;
}

void TstHangingTools::limitOfAPlayersStart()
{
    QFETCH(bool, loop);
    {
        const HangingCommand none("none");
        Sound::Play(Sound::SOUND_ERROR, loop, true, "/etc/wav/");
    }
    QCOMPARE(HangingCommand::limitOfStart(), 3000);
    Sound::KillProcess();
}

void TstHangingTools::limits_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QString>("command");
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<QList<int>>("waits");
    const auto row = [](const char *name, const char *program, const QString &command,
                        const QList<int> &waits, const Operation &operation) {
        QTest::newRow(name) << QString(program) << command << operation << waits;
    };
    row("owner of the line, list", "ps", "ps | grep", {5000}, [] { Usb::getRS232_Function(); });
    row("owner of the line, console", "systemctl", "systemctl status", {5000},
        [] { Usb::getRS232_Function(); });
    row("serial gadget", "modprobe-usb-gadget", "g_serial", {5000}, [] { Usb::StartRS232(); });
    row("network gadget", "modprobe-usb-gadget", "g_ether", {5000}, [] { Usb::StartRNDIS(); });
    row("network up", "ifconfig", "usb0 up", {5000}, [] { Usb::StartRNDIS(); });
    row("end of the bridge", "killall", "killall socat", {5000},
        [] { Usb::StopHardwareCalibrationMode(); });
    row("start of the tool", "ps", "ps | grep", {5000}, [] { Usb::StartSystemCalibrationMode(); });
    row("end of the tool", "killall", "killall mactool", {5000},
        [] { Usb::StopSystemsCalibrationMode(); });
    row("end of the tool, list", "ps", "ps | grep", {1000},
        [] { Usb::StopSystemsCalibrationMode(); });
    row("start of the console", "systemctl", "systemctl start", {5000},
        [] { Usb::StartRS232Console(); });
    row("end of the console", "systemctl", "systemctl stop", {5000},
        [] { Usb::StopRS232Console(); });

    const auto readDetails = [this] { delete m_wifi->getWiFi_Info(); };
    row("interface", "ls", "ls /sys", {withoutLimit}, [this] { m_wifi->findWifiInterfaceName(); });
    row("state", "ifconfig", "ifconfig | grep", {1000}, readDetails);
    row("network name", "iwgetid", "iwgetid wlan0", {1000}, readDetails);
    row("signal", "iwconfig", "iwconfig wlan0", {1000}, readDetails);
    row("scan", "iwlist", "iwlist wlan0", {5000},
        [this] { KTV_Connection::check_wifiScan_Avait(m_wifi.get()); });
    // After either the state is read.
    row("off", "ifconfig", "ifconfig ", {3000, 1000},
        [this] { KTV_Connection::_set_wifi_Enable_Avait(m_wifi.get(), false); });
    row("on", "ifconfig", "ifconfig ", {3000, 1000},
        [this] { KTV_Connection::_set_wifi_Enable_Avait(m_wifi.get(), true); });
    row("pass phrase", "wpa_passphrase", "wpa_passphrase Office", {1000},
        [this] { m_wifi->SetPreferedNetwork({}); });
    row("restart of the supplicant", "systemctl", "systemctl restart", {withoutLimit},
        [this] { m_wifi->SetPreferedNetwork({}); });

    row("end of a sample", "pkill", "pkill -P", {1000}, [] {
        Sound::_loopBeep("/etc/wav/SOUND_ERROR.raw");
        Sound::KillProcess();
    });
    row("lost loops", "ps", "ps | grep", {1000}, [] { Sound::KillProcess2(); });
    row("lost players", "killall", "killall aplay", {3000}, [] { Sound::KillProcess2(); });
    row("volume", "amixer", "amixer set", {30000}, [] { Sound::SetVolumme(50); });
    row("step of a tone", "beep", "beep -f 1400", {withoutLimit},
        [] { BuzzerClass::_beep(tone(1)); });
    row("end of a step", "killall", "killall beep", {withoutLimit},
        [] { BuzzerClass::_beep(tone(1)); });
    row("clearing of the buzzer", "beep", "beep -f 1 -l 0", {withoutLimit},
        [] { BuzzerClass::ClearBeepInterface(); });
}

void TstHangingTools::limits()
{
    QFETCH(QString, program);
    QFETCH(QString, command);
    QFETCH(Operation, operation);
    Meter::setBehaviour(program, "hang=1");
    const HangingCommand hanging(command);
    operation();
    QTEST(hanging.waits(), "waits");
}

KTV_METER_TEST_MAIN(TstHangingTools)
#include "tst_hanging_tools.moc"

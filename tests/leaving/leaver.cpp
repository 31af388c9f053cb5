#include "support/Meter.h"

#include <configuration/KTV_InterfaceConfig.h>
#include <datalist/KTV_DataList.h>
#include <datasource/KTV_DataSource.h>
#include <sound/BuzzerClass.h>
#include <tools/Tools.h>
#include <wifi/KTV_Connection.h>

#include <QCoreApplication>
#include <QDir>
#include <QThread>
#include <QThreadPool>

#include <csignal>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>

using Buzzer::BuzzerClass;
using QERNTools::Tools;
using SoundNamespace::Sound;

namespace {

bool startTone(KTV_Configuration::MeterModels model, BuzzerClass::Tone tone, bool loop)
{
    BuzzerClass::BuzzerClass_Initialiser(model, QStringLiteral("/etc/wav/"), false);
    BuzzerClass::Beep(tone, loop);
    return Sound::process || BuzzerClass::future.isRunning();
}

/** Polls the state with a tool that never ends, and that has no time limit. */
bool startWifiPoll()
{
    auto *const connection = new WiFi::KTV_Connection(QStringLiteral("/tmp/"));
    Meter::setBehaviour(QStringLiteral("ls"), "hang=1");
    Meter::clearJournal();
    connection->onStatusTime();
    while (Meter::journal().isEmpty())
        QThread::msleep(10);
    return true;
}

/**
 * Services in a client's static variables: destroyed after main(), and after Qt's own static
 * objects.
 */
std::unique_ptr<WiFi::KTV_Connection> s_connection;
std::unique_ptr<KTV_InterfaceConfig> s_config;
std::unique_ptr<KTV_DataList> s_lists;

/** Destroyed last; its destructor uses stores that are closed already. */
struct LateUser
{
    ~LateUser()
    {
        if (!s_config)
            return;
        const bool isGone = s_config->getValue(KTV_InterfaceConfig::MAIN_Pin, 7) == 7
            && !s_lists->AddObiectTyp(QStringLiteral("late")) && !s_lists->Open()
            && s_connection->DeleteNetwork(QStringLiteral("late")) == false;
        s_config->RestoreFabricalSetting();
        if (!isGone)
            std::abort();
    }
} s_lateUser;

bool startStores()
{
    const QString directory = QStringLiteral("/media/sdcard/UserData/");
    QDir().mkpath(directory);
    s_connection = std::make_unique<WiFi::KTV_Connection>(directory);
    s_config = std::make_unique<KTV_InterfaceConfig>(directory);
    s_lists = std::make_unique<KTV_DataList>(directory, directory, QStringLiteral("EN"));
    s_config->setValue(KTV_InterfaceConfig::MAIN_Pin, 4711);
    const std::unique_ptr<QList<DataList_Element *>> types(
        s_lists->GetObiectTyp(true, true, QString(), 0));
    if (types)
        qDeleteAll(*types);
    return s_config->getValue(KTV_InterfaceConfig::MAIN_Pin, 7) == 4711 && types;
}

using Start = bool (*)();
const std::map<std::string, Start> starts {
    {"bridge", [] { return Tools::StartHardwareCalibrationMode(); }},
    {"tone", [] { return startTone(KTV_Configuration::KTV_420, BuzzerClass::Tone_Alarm, true); }},
    {"melody",
     [] { return startTone(KTV_Configuration::KTV_420, BuzzerClass::Tone_Melody, false); }},
    {"sample",
     [] { return startTone(KTV_Configuration::KTV_4200, BuzzerClass::Tone_Melody, false); }},
    {"wifi", startWifiPoll},
    {"stores", startStores},
    {"loop", [] { return startTone(KTV_Configuration::KTV_4200, BuzzerClass::Tone_Alarm, true); }},
};

constexpr int notStarted = 3;

} // namespace

/** leaver WHAT HOW: starts something, then ends the process while it is still running. */
int main(int argc, char *argv[])
{
    const Start start = starts.at(argv[1]);
    const std::string how = argv[2];
    QThreadPool::globalInstance()->setMaxThreadCount(1);
    if (how == "without an application")
        return start() ? 0 : notStarted;
    if (how == "application kept") {
        new QCoreApplication(argc, argv);
        return start() ? 0 : notStarted;
    }
    QCoreApplication application(argc, argv);
    if (how == "facade deleted") {
        const KTV_DataSource facade;
        return start() ? 0 : notStarted;
    }
    if (how == "facade is the application's")
        new KTV_DataSource(&application);
    if (!start())
        return notStarted;
    if (how == "exit")
        std::exit(0);
    if (how == "killed")
        std::raise(SIGKILL);
    return 0;
}

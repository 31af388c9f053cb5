#include "platform/Pendrive.h"
#include "platform/PowerManager.h"
#include "platform/PrintOnSato.h"
#include "platform/Update.h"
#include "platform/skanerQR.h"

PowerManager::PowerManager(QObject *parent) : QObject(parent)
{ }

PowerManager::~PowerManager() = default;

void PowerManager::SetBrightness(int percent)
{
    fill(percent);
}

Tools_Pendrive::Pendrive::Pendrive(KTV_Configuration *, QObject *parent) : QObject(parent)
{ }

Printing::PrintOnSato::PrintOnSato(QObject *parent) : QObject(parent)
{ }

QRReader::skanerQR::skanerQR(QObject *parent) : QObject(parent)
{ }

Updater::Update::Update(QString, KTV_Configuration::MeterModels model,
                        Tools_Pendrive::Pendrive *pendrive, QObject *parent)
    : QObject(parent)
{
    fill(int(model) + (pendrive ? 1000 : 0));
}

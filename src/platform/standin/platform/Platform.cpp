// Workstation stand-ins for the maker's closed-source platform services. Each has a small visible
// effect. Their files are below "/run/platform".

#include "platform/Pendrive.h"
#include "platform/PowerManager.h"
#include "platform/PrintOnSato.h"
#include "platform/Update.h"
#include "platform/skanerQR.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

namespace {

const QLatin1String stickDirectory("/media/usb");
const QRegularExpression updateFile(QStringLiteral("\\.update$"));

QString platformFile(const QString &name)
{
    const QDir directory(QStringLiteral("/run/platform"));
    directory.mkpath(QStringLiteral("."));
    return directory.filePath(name);
}

bool writeFile(const QString &path, const QString &text)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) >= 0;
}

} // namespace

PowerManager::PowerManager(QObject *parent) : QObject(parent)
{ }

void PowerManager::SetBrightness(int percent)
{
    writeFile(platformFile(QStringLiteral("brightness")),
              QString::number(percent) + QLatin1Char('\n'));
}

namespace Tools_Pendrive {

Pendrive::Pendrive(KTV_Configuration *, QObject *parent) : QObject(parent)
{ }

QStringList Pendrive::files() const
{
    return QDir(stickDirectory).entryList(QDir::Files, QDir::Name);
}

} // namespace Tools_Pendrive

namespace Printing {

PrintOnSato::PrintOnSato(QObject *parent) : QObject(parent)
{ }

QString PrintOnSato::printLabel(const QString &text)
{
    QString path;
    int number = 0;
    do
        path = platformFile(QStringLiteral("label-%1.txt").arg(++number));
    while (QFile::exists(path));
    return writeFile(path, text) ? path : QString();
}

} // namespace Printing

namespace QRReader {

skanerQR::skanerQR(QObject *parent) : QObject(parent)
{ }

QString skanerQR::readCode() const
{
    QFile file(platformFile(QStringLiteral("qr-code")));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).trimmed() : QString();
}

} // namespace QRReader

namespace Updater {

Update::Update(QString updateDirectory, KTV_Configuration::MeterModels,
               Tools_Pendrive::Pendrive *pendrive, QObject *parent)
    : QObject(parent)
    , m_directory(std::move(updateDirectory))
    , m_pendrive(pendrive)
{ }

QStringList Update::updateFiles() const
{
    QStringList names = QDir(m_directory).entryList(QDir::Files, QDir::Name).filter(updateFile);
    if (m_pendrive)
        names += m_pendrive->files().filter(updateFile);
    return names;
}

} // namespace Updater

#pragma once

#include "platform_export.h"

#include <configuration/KTV_Configuration.h>

#include <QObject>
#include <QString>
#include <QStringList>

namespace Tools_Pendrive {
class Pendrive;
}

namespace Updater {

/** The firmware updater. The workstation stand-in lists update files and installs nothing. */
class KTV_PLATFORM_EXPORT Update : public QObject
{
    Q_OBJECT
public:
    /**
     * @param updateDirectory searched for update files; no final "/"
     * @param model the meter that is to be updated
     * @param pendrive a stick that may have updates; must outlive this object
     */
    Update(QString updateDirectory, KTV_Configuration::MeterModels model,
           Tools_Pendrive::Pendrive *pendrive, QObject *parent = nullptr);

    /** Stand-in: names of the "*.update" files in the update directory and on the stick. */
    QStringList updateFiles() const;

private:
    const QString m_directory;
    const Tools_Pendrive::Pendrive *const m_pendrive;
};

} // namespace Updater

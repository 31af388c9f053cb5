#pragma once

#include "platform_export.h"

#include <QObject>
#include <QStringList>

class KTV_Configuration;

namespace Tools_Pendrive {

/** The USB stick. The workstation stand-in takes the folder "/media/usb" for one. */
class KTV_PLATFORM_EXPORT Pendrive : public QObject
{
    Q_OBJECT
public:
    /** @param config the device description; stays the caller's and outlives this object */
    explicit Pendrive(KTV_Configuration *config, QObject *parent = nullptr);

    /** Stand-in: names of the files on the stick; empty when none is plugged in. */
    QStringList files() const;
};

} // namespace Tools_Pendrive

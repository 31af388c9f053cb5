#pragma once

#include "platform_export.h"

#include <QObject>
#include <QStringList>

class KTV_Configuration;

namespace Tools_Pendrive {

/** The USB stick. The workstation stand-in uses the folder "/media/usb" in its place. */
class KTV_PLATFORM_EXPORT Pendrive : public QObject
{
    Q_OBJECT
public:
    /** @param config the device description; owned by the caller, must outlive this object */
    explicit Pendrive(KTV_Configuration *config, QObject *parent = nullptr);

    /** Stand-in: names of the files on the stick; empty when none is plugged in. */
    QStringList files() const;
};

} // namespace Tools_Pendrive

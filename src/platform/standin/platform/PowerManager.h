#pragma once

#include "platform_export.h"

#include <QObject>

/** Display brightness of the device. The workstation stand-in stores the number in a file. */
class KTV_PLATFORM_EXPORT PowerManager : public QObject
{
    Q_OBJECT
public:
    /** Finds the display. */
    explicit PowerManager(QObject *parent = nullptr);

    /** Sets the display's brightness, in percent. */
    void SetBrightness(int percent);
};

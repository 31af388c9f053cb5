#pragma once

#include "platform_export.h"

#include <QObject>
#include <QString>

namespace QRReader {

/** The QR code reader. The workstation stand-in reads the text of a file. */
class KTV_PLATFORM_EXPORT skanerQR : public QObject
{
    Q_OBJECT
public:
    /** Finds the reader. */
    explicit skanerQR(QObject *parent = nullptr);

    /** Stand-in: the code in front of the reader; empty when there is none. */
    QString readCode() const;
};

} // namespace QRReader

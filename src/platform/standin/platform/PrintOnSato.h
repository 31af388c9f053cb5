#pragma once

#include "platform_export.h"

#include <QObject>
#include <QString>

namespace Printing {

/** The label printer. The workstation stand-in writes each label into a text file. */
class KTV_PLATFORM_EXPORT PrintOnSato : public QObject
{
    Q_OBJECT
public:
    /** Finds the printer. */
    explicit PrintOnSato(QObject *parent = nullptr);

    /** Stand-in: prints a label. @return path of the file; empty when it cannot be written */
    QString printLabel(const QString &text);
};

} // namespace Printing

#include "meter/NetworkName.h"

#include <QRegularExpression>
#include <QVector>

#include <algorithm>

namespace {

/** The bytes of a name; the tools print a byte that is not plain ASCII as "\xC3". */
QByteArray unescaped(const QString &printed)
{
    static const QRegularExpression escape(QStringLiteral("\\\\x([0-9A-Fa-f]{2})"));
    QByteArray bytes;
    decltype(printed.size()) end = 0;
    for (auto escapes = escape.globalMatch(printed); escapes.hasNext();) {
        const QRegularExpressionMatch match = escapes.next();
        bytes += printed.mid(end, match.capturedStart() - end).toUtf8();
        bytes += char(match.captured(1).toInt(nullptr, 16));
        end = match.capturedEnd();
    }
    return bytes + printed.mid(end).toUtf8();
}

} // namespace

QString NetworkName::readable(const QString &printed)
{
    const QByteArray bytes = unescaped(printed);
    const QString name = QString::fromUtf8(bytes);
    const QVector<uint> characters = name.toUcs4();
    const bool isText = name.toUtf8() == bytes
        && std::all_of(characters.begin(), characters.end(),
                       [](uint character) { return QChar::isPrint(character); });
    return isText ? name : printed;
}

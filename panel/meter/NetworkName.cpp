#include "meter/NetworkName.h"

#include <QRegularExpression>
#include <QTextCodec>
#include <QVector>

#include <algorithm>

namespace {

/** The bytes of a name; the tools print a byte that is not plain ASCII as "\xC3". */
QByteArray unescaped(const QString &printed)
{
    static const QRegularExpression escape(QStringLiteral("\\\\x([0-9A-Fa-f]{2})"));
    QByteArray bytes;
    int end = 0;
    for (auto escapes = escape.globalMatch(printed); escapes.hasNext();) {
        const QRegularExpressionMatch match = escapes.next();
        bytes += printed.midRef(end, match.capturedStart() - end).toUtf8();
        bytes += char(match.capturedRef(1).toInt(nullptr, 16));
        end = match.capturedEnd();
    }
    return bytes + printed.midRef(end).toUtf8();
}

} // namespace

QString NetworkName::readable(const QString &printed)
{
    const QByteArray bytes = unescaped(printed);
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    const QString name =
        QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
    const QVector<uint> characters = name.toUcs4();
    const bool isText = state.invalidChars == 0 && state.remainingChars == 0
        && std::all_of(characters.begin(), characters.end(), qOverload<uint>(&QChar::isPrint));
    return isText ? name : printed;
}

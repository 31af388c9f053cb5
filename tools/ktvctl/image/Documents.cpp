#include "Checks.h"

namespace {

constexpr int largestFile = 4 * 1024 * 1024; // the library refuses more

} // namespace

std::optional<QDomDocument> readDocument(const Image &image, const QString &path, Report &report)
{
    const auto bytes = image.read(path);
    if (!bytes) {
        report.error(path, QStringLiteral("cannot be read"));
        return std::nullopt;
    }
    if (bytes->size() > largestFile) {
        report.error(path, QStringLiteral("larger than 4 MiB"));
        return std::nullopt;
    }
    QDomDocument document;
    QString message;
    int line = 0;
    if (!document.setContent(*bytes, &message, &line)) {
        report.error(path, line, message);
        return std::nullopt;
    }
    return document;
}

QDomElement rootOf(const QDomDocument &document)
{
    return document.firstChildElement();
}

bool isUtf8(const QByteArray &bytes, const QString &path, Report &report)
{
    int line = 0;
    for (const QByteArray &text : bytes.split('\n')) {
        ++line;
        if (QString::fromUtf8(text).toUtf8() == text)
            continue;
        report.error(path, line, QStringLiteral("is not UTF-8"));
        return false;
    }
    return true;
}

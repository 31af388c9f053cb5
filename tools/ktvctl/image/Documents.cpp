#include "Checks.h"

#include "internal/XmlFile_p.h"

#include <QBuffer>

namespace {

const QString lineAttribute = QStringLiteral("#line"); // no name that a file can have
constexpr int largestFile = 4 * 1024 * 1024; // the library refuses more

} // namespace

std::optional<QDomDocument> readDocument(const Image &image, const QString &path, Report &report)
{
    auto bytes = image.read(path);
    if (!bytes) {
        report.error(path, QStringLiteral("cannot be read"));
        return std::nullopt;
    }
    if (bytes->size() > largestFile) {
        report.error(path, QStringLiteral("larger than 4 MiB"));
        return std::nullopt;
    }
    QBuffer buffer(&*bytes);
    buffer.open(QIODevice::ReadOnly);
    QDomDocument document;
    Internal::XmlError error;
    if (!Internal::parseXml(buffer, document, error, lineAttribute)) {
        report.error(path, error.line, error.message);
        return std::nullopt;
    }
    return document;
}

QDomElement rootOf(const QDomDocument &document)
{
    return document.firstChildElement();
}

int lineOf(const QDomElement &element)
{
    return element.attribute(lineAttribute).toInt();
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

// Names and pass phrases in the supplicant's file, which the real supplicant then reads.

#include "Target.h"

#include <wifi/KTV_Connection.h>

#include <QProcess>
#include <QRegularExpression>

namespace {

const QString userData = QStringLiteral("/media/sdcard/UserData/");
const QString file = QStringLiteral("/etc/wpa_supplicant/wpa_supplicant-wlan0.conf");

WiFi::KTV_Connection *wifi = nullptr;

/** Output of the real supplicant while it reads the file; it runs without a driver. */
QString supplicantsReading()
{
    QProcess supplicant;
    supplicant.setProcessChannelMode(QProcess::MergedChannels);
    supplicant.start(QStringLiteral("/usr/sbin/wpa_supplicant"),
                     {QStringLiteral("-i"), QStringLiteral("wlan0"), QStringLiteral("-D"),
                      QStringLiteral("none-such"), QStringLiteral("-c"), file,
                      QStringLiteral("-dd")});
    FUZZ_EXPECT(supplicant.waitForFinished(10000));
    return QString::fromLocal8Bit(supplicant.readAllStandardOutput());
}

/** The names that it has read, as bytes. */
QList<QByteArray> namesRead(const QString &log)
{
    static const QRegularExpression name(
        QStringLiteral("ssid - hexdump_ascii\\(len=([0-9]+)\\):\n((?:     .*\n)+)"));
    QList<QByteArray> names;
    for (auto match = name.globalMatch(log); match.hasNext();) {
        const auto found = match.next();
        QByteArray bytes;
        for (const QString &line : found.captured(2).split(QLatin1Char('\n')))
            bytes += QByteArray::fromHex(line.mid(5, 48).toLatin1());
        names += bytes.left(found.captured(1).toInt());
    }
    return names;
}

} // namespace

void prepareTarget()
{
    wifi = new WiFi::KTV_Connection(userData);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzInput input(data, size);
    wifi->RestoreFabricalSetting();
    QList<QByteArray> expected;
    for (int left = input.ConsumeIntegralInRange(1, 3); left > 0; --left) {
        // Valid names of networks: 1 to 32 bytes of text. Two kinds of names do not work in the
        // supplicant's file (docs/wifi.md): with a line feed, which ends the line, and with a '#'
        // after a quotation mark, which begins a comment.
        QString name = consumeText(input, 32).remove(QLatin1Char('\n')).remove(QChar());
        const int quote = name.indexOf(QLatin1Char('"'));
        if (quote >= 0 && name.lastIndexOf(QLatin1Char('#')) > quote)
            name.remove(QLatin1Char('#'));
        while (name.toUtf8().size() > 32)
            name.chop(1);
        QString key;
        if (input.ConsumeBool()) { // a pass phrase is printable ASCII
            for (int count = input.ConsumeIntegralInRange(8, 63); count > 0; --count)
                key += QChar(input.ConsumeIntegralInRange(32, 126));
        }
        if (name.isEmpty() || !wifi->AddNetwork(name, key))
            continue;
        expected.removeAll(name.toUtf8()); // a known network moves to the end
        expected += name.toUtf8();
    }
    if (expected.isEmpty())
        return 0;
    const QString log = supplicantsReading();
    const QList<QByteArray> read = namesRead(log);
    if (read != expected)
        std::fprintf(stderr, "expected: %s\nfile:\n%s\n%s\n", expected.join(" | ").constData(),
                     Meter::readFile(file).constData(), qPrintable(log));
    FUZZ_EXPECT(read == expected);
    FUZZ_EXPECT(log.count(QStringLiteral("start of a new network block")) == expected.size());
    return 0;
}

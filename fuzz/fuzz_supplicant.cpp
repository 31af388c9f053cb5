// Names and pass phrases in the supplicant's file, which the real supplicant then reads.

#include "Target.h"

#include <wifi/KTV_Connection.h>

#include <QProcess>

#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

const QString userData = QStringLiteral("/media/sdcard/UserData/");
const QString file = QStringLiteral("/etc/wpa_supplicant/wpa_supplicant-wlan0.conf");

WiFi::KTV_Connection *wifi = nullptr;

/** What stands before the first network; it is always the same. */
const QByteArray start = "ctrl_interface=/var/run/wpa_supplicant\n"
                         "ctrl_interface_group=0\n"
                         "update_config=1\n"
                         "fast_reauth=1\n"
                         "ap_scan=1\n"
                         "\n";

/**
 * The real supplicant, without a driver: one process reads the networks of every input.
 *
 * It wants a raw socket, which the meter does not allow, so it has a network and users of its own.
 * There is no group 0 among them, so it gets a file with another start.
 */
class Supplicant
{
public:
    Supplicant()
    {
        Meter::writeFile(ownFile, ownStart);
        // One of an earlier process of the fuzzer would keep the socket.
        Meter::killProcesses(QStringLiteral("wpa_supplicant"));
        m_process.setStandardOutputFile(QProcess::nullDevice());
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(QStringLiteral("/usr/bin/unshare"),
                        {QStringLiteral("--user"), QStringLiteral("--keep-caps"),
                         QStringLiteral("--net"), QStringLiteral("/usr/sbin/wpa_supplicant"),
                         QStringLiteral("-i"), QStringLiteral("lo"), QStringLiteral("-D"),
                         QStringLiteral("none"), QStringLiteral("-c"), ownFile});
        FUZZ_EXPECT(m_process.waitForStarted());
        const sockaddr_un own = address("/tmp/fuzz-supplicant");
        ::unlink(own.sun_path);
        FUZZ_EXPECT(::bind(m_socket, reinterpret_cast<const sockaddr *>(&own), sizeof(own)) == 0);
        const sockaddr_un control = address("/tmp/supplicant/lo");
        while (::connect(m_socket, reinterpret_cast<const sockaddr *>(&control), sizeof(control))
               != 0) {
            if (m_process.waitForFinished(1)) {
                std::fputs("The supplicant has not started: it needs a user namespace of its own, "
                           "which this system may forbid.\n",
                           stderr);
                ::_exit(1); // without libFuzzer's report, because no input is to blame
            }
        }
    }

    void read(const QByteArray &networks) const
    {
        Meter::writeFile(ownFile, ownStart + networks);
        FUZZ_EXPECT(ask("RECONFIGURE") == "OK");
    }

    /** @return its answer, without the line feed at the end */
    QByteArray ask(const QByteArray &request) const
    {
        char answer[4096];
        FUZZ_EXPECT(::send(m_socket, request.constData(), size_t(request.size()), 0)
                    == request.size());
        // The timers of the fuzzer may interrupt it.
        const ssize_t size = TEMP_FAILURE_RETRY(::recv(m_socket, answer, sizeof(answer), 0));
        FUZZ_EXPECT(size > 0);
        return QByteArray(answer, int(size)).trimmed();
    }

private:
    static sockaddr_un address(const char *path)
    {
        sockaddr_un address {};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, path, sizeof(address.sun_path) - 1);
        return address;
    }

    const QString ownFile = QStringLiteral("/tmp/supplicant.conf");
    const QByteArray ownStart = "ctrl_interface=/tmp/supplicant\nap_scan=1\n";
    QProcess m_process;
    const int m_socket = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
};

/** A network as it stands in the file. */
struct Entry
{
    QByteArray name;
    bool isProtected = false;
    bool isPreferred = false;

    bool operator==(const Entry &other) const
    {
        return name == other.name && isProtected == other.isProtected
            && isPreferred == other.isPreferred;
    }
};

/** The bytes of a text that the supplicant prints in quotation marks, or as hexadecimal digits. */
QByteArray unquoted(const QByteArray &text)
{
    return text.startsWith('"') ? text.mid(1, text.size() - 2) : QByteArray::fromHex(text);
}

/** What the supplicant reads in the file. */
QList<Entry> entriesRead()
{
    static const Supplicant supplicant;
    const QByteArray text = Meter::readFile(file);
    FUZZ_EXPECT(text.startsWith(start));
    supplicant.read(text.mid(start.size()));
    QList<Entry> entries;
    for (;;) {
        const QByteArray field = "GET_NETWORK " + QByteArray::number(entries.size()) + ' ';
        const QByteArray name = supplicant.ask(field + "ssid");
        if (name == "FAIL")
            return entries;
        Entry entry;
        entry.name = unquoted(name);
        entry.isProtected = supplicant.ask(field + "psk") == "*";
        entry.isPreferred = supplicant.ask(field + "priority") == "100";
        FUZZ_EXPECT((supplicant.ask(field + "key_mgmt") == "NONE") == !entry.isProtected);
        entries += entry;
    }
}

} // namespace

void prepareTarget()
{
    Meter::hideProgram(QStringLiteral("systemctl")); // this target asks a supplicant of its own
    wifi = new WiFi::KTV_Connection(userData);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzInput input(data, size);
    wifi->RestoreFabricalSetting();
    QList<Entry> expected;
    for (int left = input.ConsumeIntegralInRange(1, 3); left > 0; --left) {
        // Valid names of networks: 1 to 32 bytes of text. Two kinds of names do not work in the
        // supplicant's file (docs/wifi.md): with a line feed, which ends the line, and with a '#'
        // after a quotation mark, which begins a comment.
        QString name = consumeText(input, 32).remove(QLatin1Char('\n')).remove(QChar());
        for (const QChar replaced : {QChar(0xFFFE), QChar(0xFFFF)}) // by SQLite, with U+FFFD
            name.remove(replaced);
        const int quote = name.indexOf(QLatin1Char('"'));
        if (quote >= 0 && name.lastIndexOf(QLatin1Char('#')) > quote)
            name.remove(QLatin1Char('#'));
        while (name.toUtf8().size() > 32)
            name.chop(name.at(name.size() - 1).isLowSurrogate() ? 2 : 1);
        QString key;
        // Seldom, because deriving a key takes longer than everything else here.
        if (input.ConsumeIntegralInRange(0, 7) == 1) { // a pass phrase is printable ASCII
            for (int count = input.ConsumeIntegralInRange(8, 63); count > 0; --count)
                key += QChar(input.ConsumeIntegralInRange(32, 126));
        }
        if (name.isEmpty() || !wifi->AddNetwork(name, key))
            continue;
        const QByteArray bytes = name.toUtf8();
        for (int i = expected.size() - 1; i >= 0; --i) {
            expected[i].isPreferred = false;
            if (expected.at(i).name == bytes) // a known network moves to the end
                expected.removeAt(i);
        }
        expected.append({bytes, !key.isEmpty(), true});
    }
    if (expected.isEmpty())
        return 0;
    const QList<Entry> read = entriesRead();
    if (read != expected)
        std::fprintf(stderr, "file:\n%s\n", Meter::readFile(file).constData());
    FUZZ_EXPECT(read == expected);
    return 0;
}

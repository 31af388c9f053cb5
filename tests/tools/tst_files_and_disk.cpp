#include "support/LogCapture.h"
#include "support/Meter.h"
#include "support/Volume.h"

#include <tools/Tools.h>

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <memory>
#include <utility>

using QERNTools::DiskInfo;
using QERNTools::Tools;

namespace {

const QString cardMarker = QStringLiteral("/etc/korva/sdcard.error");

} // namespace

/** File names, disk figures and the memory card's state. */
class TstFilesAndDisk : public QObject
{
    Q_OBJECT
private slots:
    void sizes_data();
    void sizes();
    void validNames_data();
    void validNames();
    void freeNames_data();
    void freeNames();
    void freeNamesOfWholeNames_data();
    void freeNamesOfWholeNames();
    void manyTakenNames();

    void usedPercent_data();
    void usedPercent();
    void almostFull();
    void figures();
    void volumesWithoutSize_data();
    void volumesWithoutSize();

    void cardMarker_data();
    void cardMarker();
};

void TstFilesAndDisk::sizes_data()
{
    QTest::addColumn<double>("size");
    QTest::addColumn<QString>("text");
    const double kilo = 1024;
    const double mega = kilo * 1024;
    const double giga = mega * 1024;
    QTest::newRow("nothing") << 0.0 << "0 B";
    QTest::newRow("one") << 1.0 << "1 B";
    QTest::newRow("last of the bytes") << 1023.0 << "1023 B";
    QTest::newRow("six digits") << 1023.456 << "1023.46 B";
    QTest::newRow("just below a kilobyte") << std::nextafter(kilo, 0.0) << "1024 B";
    QTest::newRow("a kilobyte") << kilo << "1.00 kB";
    QTest::newRow("one and a half") << 1536.0 << "1.50 kB";
    QTest::newRow("two decimals, rounded") << 1034.0 << "1.01 kB";
    QTest::newRow("last of the kilobytes") << mega - 1 << "1024.00 kB";
    QTest::newRow("a megabyte") << mega << "1.00 MB";
    QTest::newRow("last of the megabytes") << giga - 1 << "1024.00 MB";
    QTest::newRow("a gigabyte") << giga << "1.00 GB";
    QTest::newRow("no terabytes") << 2048 * giga << "2048.00 GB";
    QTest::newRow("largest volume") << std::ldexp(1.0, 63) << "8589934592.00 GB";
    QTest::newRow("negative") << -1.0 << "-1 B";
    QTest::newRow("negative and large") << -2e6 << "-2e+06 B";
}

void TstFilesAndDisk::sizes()
{
    QFETCH(double, size);
    QFETCH(QString, text);
    QCOMPARE(Tools::humanFileSize(size), text);
}

void TstFilesAndDisk::validNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("valid");
    for (const char character : QByteArray("\\/:*?\"<>|"))
        QTest::addRow("%c", character)
            << QStringLiteral("a") + character + "b" + character << "a_b_";
    QTest::newRow("all of them") << "\\/:*?\"<>|"
                                 << "_________";
    QTest::newRow("slash and colon") << "a/b:c"
                                     << "a_b_c";
    QTest::newRow("everything else stays") << " .a..b'%1^[]-$&;#~`{}(),+=!@ "
                                           << " .a..b'%1^[]-$&;#~`{}(),+=!@ ";
    QTest::newRow("letters") << QStringLiteral("zażółć 日本") << QStringLiteral("zażółć 日本");
    QTest::newRow("look-alikes stay") << QStringLiteral("／：＊？") << QStringLiteral("／：＊？");
    QTest::newRow("lines and tabs stay") << "a\n\tb"
                                         << "a\n\tb";
    QTest::newRow("empty") << ""
                           << "";
    QTest::newRow("no limit of length") << QString(5000, '/') << QString(5000, '_');
    QTest::newRow("half a letter") << QStringLiteral("a/") + QChar(0xd800) + "/b"
                                   << QStringLiteral("a_") + QChar(0xd800) + "_b";
    QTest::newRow("NUL") << QString::fromUtf8("a\0/b", 4) << QString::fromUtf8("a\0_b", 4);
}

void TstFilesAndDisk::validNames()
{
    QFETCH(QString, name);
    QFETCH(QString, valid);
    QCOMPARE(Tools::validFileName(name), valid);
}

void TstFilesAndDisk::freeNames_data()
{
    QTest::addColumn<QStringList>("taken");
    QTest::addColumn<QString>("base");
    QTest::addColumn<QString>("extension");
    QTest::addColumn<QString>("name");
    QTest::newRow("nothing taken") << QStringList() << "report"
                                   << "pdf"
                                   << "report.pdf";
    QTest::newRow("extension with its dot") << QStringList() << "report"
                                            << ".pdf"
                                            << "report.pdf";
    QTest::newRow("taken") << QStringList {"report.pdf"} << "report"
                           << "pdf"
                           << "report_1.pdf";
    QTest::newRow("taken twice") << QStringList {"report.pdf", "report_1.pdf"} << "report"
                                 << ".pdf"
                                 << "report_2.pdf";
    QTest::newRow("a gap is filled") << QStringList {"report.pdf", "report_2.pdf"} << "report"
                                     << "pdf"
                                     << "report_1.pdf";
    QTest::newRow("only numbered ones taken") << QStringList {"report_1.pdf"} << "report"
                                              << "pdf"
                                              << "report.pdf";
    QTest::newRow("leading zeros are other names")
        << QStringList {"report.pdf", "report_01.pdf"} << "report"
        << "pdf"
        << "report_1.pdf";
    QTest::newRow("letter case counts") << QStringList {"Report.PDF"} << "report"
                                        << "pdf"
                                        << "report.pdf";
    QTest::newRow("empty extension leaves a dot") << QStringList() << "report"
                                                  << ""
                                                  << "report.";
    QTest::newRow("empty extension taken") << QStringList {"report."} << "report"
                                           << ""
                                           << "report_1.";
    QTest::newRow("empty base") << QStringList {".pdf"} << ""
                                << "pdf"
                                << "_1.pdf";
    QTest::newRow("a directory takes a name, too") << QStringList {"report.pdf/x"} << "report"
                                                   << "pdf"
                                                   << "report_1.pdf";
    QTest::newRow("quotes, percent, letters")
        << QStringList {QStringLiteral("ż'\"%1.pdf")} << QStringLiteral("ż'\"%1") << "pdf"
        << QStringLiteral("ż'\"%1_1.pdf");
    QTest::newRow("two dots in the extension") << QStringList {"a.tar.gz"} << "a"
                                               << "tar.gz"
                                               << "a_1.tar.gz";
}

void TstFilesAndDisk::freeNames()
{
    QFETCH(QStringList, taken);
    QFETCH(QString, base);
    QFETCH(QString, extension);
    QFETCH(QString, name);
    const QTemporaryDir directory;
    for (const QString &file : std::as_const(taken))
        Meter::writeFile(directory.path() + '/' + file, "x");
    QCOMPARE(Tools::findFreeFileName(directory.path() + '/', base, extension), name);
    QVERIFY(!QFile::exists(directory.path() + '/' + name)); // the function only returns a name
}

void TstFilesAndDisk::freeNamesOfWholeNames_data()
{
    QTest::addColumn<QStringList>("taken");
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QString>("name");
    QTest::newRow("nothing taken") << QStringList() << "report.pdf"
                                   << "report.pdf";
    QTest::newRow("taken") << QStringList {"report.pdf"} << "report.pdf"
                           << "report_1.pdf";
    QTest::newRow("the middle of several dots is lost") << QStringList() << "a.b.c"
                                                        << "a.c";
    QTest::newRow("what is left is searched for") << QStringList {"a.c"} << "a.b.c"
                                                  << "a_1.c";
    QTest::newRow("no extension leaves a dot") << QStringList() << "report"
                                               << "report.";
    QTest::newRow("hidden file") << QStringList() << ".profile"
                                 << ".profile";
    QTest::newRow("hidden file taken") << QStringList {".profile"} << ".profile"
                                       << "_1.profile";
    QTest::newRow("final dot") << QStringList() << "report."
                               << "report.";
    QTest::newRow("path in the name is lost") << QStringList() << "sub/report.pdf"
                                              << "report.pdf";
    QTest::newRow("letters") << QStringList {QStringLiteral("próba.csv")}
                             << QStringLiteral("próba.csv") << QStringLiteral("próba_1.csv");
}

void TstFilesAndDisk::freeNamesOfWholeNames()
{
    QFETCH(QStringList, taken);
    QFETCH(QString, fileName);
    QFETCH(QString, name);
    const QTemporaryDir directory;
    for (const QString &file : std::as_const(taken))
        Meter::writeFile(directory.path() + '/' + file, "x");
    QCOMPARE(Tools::findFreeFileName(directory.path() + '/', fileName), name);
}

void TstFilesAndDisk::manyTakenNames()
{
    const QTemporaryDir directory;
    const QString prefix = directory.path() + '/';
    Meter::writeFile(prefix + "r.csv", "x");
    for (int i = 1; i <= 1200; ++i)
        Meter::writeFile(prefix + QStringLiteral("r_%1.csv").arg(i), "x");
    QCOMPARE(Tools::findFreeFileName(prefix, "r", "csv"), QStringLiteral("r_1201.csv"));
    // The directory is only a prefix: without a slash at its end it is part of the name.
    QCOMPARE(Tools::findFreeFileName(directory.path(), "r", "csv"), QStringLiteral("r.csv"));
}

void TstFilesAndDisk::usedPercent_data()
{
    QTest::addColumn<int>("blocks");
    QTest::addColumn<qint64>("percent");
    for (const int percent : {0, 1, 70, 71, 80, 81, 99, 100})
        QTest::addRow("%d of 100", percent) << percent << qint64(percent);
    // 0.29 * 100 is a little less than 29, and decimals are cut off.
    QTest::newRow("cut off, not rounded") << 29 << qint64(28);
}

void TstFilesAndDisk::usedPercent()
{
    QFETCH(int, blocks);
    QFETCH(qint64, percent);
    const QTemporaryDir directory;
    Volume volume(directory.path());
    volume.fill(blocks);
    QCOMPARE(Tools::getUsedSpacePercent(directory.path()), percent);
    QCOMPARE(Tools::getFreeSpace(directory.path()), qint64(100 - blocks) * 4096);
    volume.fill(0);
    // Earlier results are not kept.
    QCOMPARE(Tools::getUsedSpacePercent(directory.path()), qint64(0));
}

void TstFilesAndDisk::almostFull()
{
    const QTemporaryDir directory;
    Volume volume(directory.path(), 1000);
    volume.fill(999);
    QCOMPARE(Tools::getUsedSpacePercent(directory.path()), qint64(99));
    const std::unique_ptr<DiskInfo> info(Tools::getDiskInfo(directory.path()));
    QCOMPARE(info->usedPercent, float(999.0 / 1000.0 * 100));
}

void TstFilesAndDisk::figures()
{
    const QTemporaryDir directory;
    Volume volume(directory.path(), 512);
    volume.fill(384);
    const std::unique_ptr<Tools::DiskInfo> first(Tools::getDiskInfo(directory.path() + '/'));
    QCOMPARE(first->freeText, QStringLiteral("512.00 kB"));
    QCOMPARE(first->usedText, QStringLiteral("1.50 MB"));
    QCOMPARE(first->totalText, QStringLiteral("2.00 MB"));
    QCOMPARE(first->usedPercent, 75.F);
    const std::unique_ptr<DiskInfo> second(Tools::getDiskInfo(directory.path()));
    QVERIFY(first != second);
}

void TstFilesAndDisk::volumesWithoutSize_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<qint64>("free");
    QTest::addColumn<QString>("text");
    QTest::newRow("proc") << "/proc" << qint64(0) << "0 B";
    QTest::newRow("no such path") << "/no/such/path" << qint64(-1) << "-1 B";
    QTest::newRow("empty path") << "" << qint64(-1) << "-1 B";
}

void TstFilesAndDisk::volumesWithoutSize()
{
    QFETCH(QString, path);
    QFETCH(qint64, free);
    QFETCH(QString, text);
    QCOMPARE(Tools::getUsedSpacePercent(path), qint64(0));
    QCOMPARE(Tools::getFreeSpace(path), free);
    const std::unique_ptr<DiskInfo> info(Tools::getDiskInfo(path));
    QCOMPARE(info->usedPercent, 0.F);
    QCOMPARE(info->freeText, text);
    QCOMPARE(info->usedText, QStringLiteral("0 B"));
    QCOMPARE(info->totalText, text);
}

void TstFilesAndDisk::cardMarker_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("ok");
    QTest::newRow("no marker") << QByteArray() << true;
    QTest::newRow("empty") << QByteArray("") << false;
    QTest::newRow("0") << QByteArray("0") << true;
    QTest::newRow("0 and a line end") << QByteArray("0\r\n") << true;
    QTest::newRow("0 and more") << QByteArray("01 fine") << true;
    QTest::newRow("1") << QByteArray("1\n") << false;
    QTest::newRow("blank before it") << QByteArray(" 0") << false;
    QTest::newRow("NUL") << QByteArray("\0000", 2) << false;
    QTest::newRow("noise") << QByteArray(4096, '\xff') << false;
}

void TstFilesAndDisk::cardMarker()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, ok);
    QDir().rmdir(::cardMarker);
    QFile::remove(::cardMarker);
    if (!content.isNull())
        Meter::writeFile(::cardMarker, content);
    const LogCapture log;
    QCOMPARE(Tools::SD_Card_is_OK(), ok);
    QCOMPARE(QFile::exists(::cardMarker), !content.isNull()); // the file is not removed
    QFile::remove(::cardMarker);
    QDir().mkpath(::cardMarker); // exists, but cannot be read
    QCOMPARE(Tools::SD_Card_is_OK(), false);
    QDir().rmdir(::cardMarker);
    QCOMPARE(log.lines(), QStringList());
}

KTV_METER_TEST_MAIN(TstFilesAndDisk)
#include "tst_files_and_disk.moc"

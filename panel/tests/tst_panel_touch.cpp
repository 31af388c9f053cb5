#include "PanelTestMain.h"
#include "touch/Indicators.h"
#include "touch/Plot.h"
#include "touch/Theme.h"
#include "touch/TouchList.h"

#include "support/LogCapture.h"

#include <QPainter>
#include <QScrollBar>
#include <QtTest>

#include <cmath>

namespace {

/** A theme in which all colours of the states are equal. */
const Theme &colourless()
{
    static const Theme theme {Qt::white, Qt::white, Qt::black, Qt::black,
                              Qt::black, Qt::black, Qt::white, Qt::black};
    return theme;
}

QStringList labels(const QVector<PlotPicture::Tick> &ticks)
{
    QStringList labels;
    for (const PlotPicture::Tick &tick : ticks)
        labels += tick.label;
    return labels;
}

/** Position of the tick with this label, in pixels. */
double placeOf(const QString &label, const QVector<PlotPicture::Tick> &ticks)
{
    for (const PlotPicture::Tick &tick : ticks)
        if (tick.label == label)
            return tick.position;
    return qQNaN();
}

/** Number of pixels of the plot that have this colour. */
int count(const QColor &colour, Plot &plot)
{
    const QImage image = plot.grab().toImage();
    int pixels = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            pixels += image.pixelColor(x, y) == colour ? 1 : 0;
    return pixels;
}

/** A visible plot of readings, one per second, that alternate between two values. */
struct ShownPlot
{
    ShownPlot(const Plot::Axis &x, const Plot::Axis &y, int count, double low, double high)
    {
        plot.resize(500, 300);
        for (int i = 0; i < count; ++i)
            plot.add(i, i % 2 == 0 ? low : high);
        plot.setAxes(x, y);
        plot.show();
    }

    Plot plot {QStringLiteral("plot")};
};

const Plot::Axis seconds {1, QStringLiteral("s")};
const Plot::Axis minutes {60, QStringLiteral("min")};
const Plot::Axis hours {3600, QStringLiteral("h")};
const Plot::Axis milliohms {1e-3, QStringLiteral("m\u2126")};

} // namespace

Q_DECLARE_METATYPE(Plot::Axis)

/** The widgets of touch/, without the library. */
class TstPanelTouch : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void ticksAreRound_data();
    void ticksAreRound();
    void scalesFit_data();
    void scalesFit();
    void gapsStayOpen();
    void touchAsksForATime();
    void pointIsMarked();
    void boundsAreDrawn_data();
    void boundsAreDrawn();
    void verdictIsAsLargeAsTheUnit_data();
    void verdictIsAsLargeAsTheUnit();
    void statesDifferInTheirShape();
    void choiceStaysWithItsRow();
    void rowsAreRequestedWhenVisible();
};

void TstPanelTouch::init()
{
    Theme::fit({800, 480});
    Theme::use(Theme::light());
}

// --- the plot

void TstPanelTouch::ticksAreRound_data()
{
    QTest::addColumn<Plot::Axis>("axis");
    QTest::addColumn<int>("length");
    QTest::addColumn<QStringList>("labels");
    QTest::newRow("seconds") << seconds << 101 << QStringList({"0", "20", "40", "60", "80", "100"});
    QTest::newRow("minutes") << minutes << 301 << QStringList({"0", "1", "2", "3", "4", "5"});
    QTest::newRow("hours") << hours << 9001
                           << QStringList({"0.0", "0.5", "1.0", "1.5", "2.0", "2.5"});
}

void TstPanelTouch::ticksAreRound()
{
    QFETCH(Plot::Axis, axis);
    QFETCH(int, length);
    const ShownPlot shown(axis, milliohms, length, 0.001, 0.002);
    const PlotPicture picture = shown.plot.picture();
    QTEST(labels(picture.xTicks), "labels");
    QCOMPARE(labels(picture.yTicks), QStringList({"1.0", "1.5", "2.0"}));
}

void TstPanelTouch::scalesFit_data()
{
    QTest::addColumn<double>("low");
    QTest::addColumn<double>("high");
    QTest::addColumn<QStringList>("labels");
    QTest::newRow("zeros") << 0. << 0. << QStringList({"-1.0", "-0.5", "0.0", "0.5", "1.0"});
    QTest::newRow("on both sides of zero")
        << -0.001 << 0.001 << QStringList({"-1.0", "-0.5", "0.0", "0.5", "1.0"});
    QTest::newRow("nearly alike") << 1. << 1.0000001
                                  << QStringList({"999.990", "999.995", "1000.000", "1000.005",
                                                  "1000.010"});
    QTest::newRow("large") << 1000. << 9000.
                           << QStringList({"2000000", "4000000", "6000000", "8000000"});
}

void TstPanelTouch::scalesFit()
{
    QFETCH(double, low);
    QFETCH(double, high);
    ShownPlot shown(seconds, milliohms, 100, low, high);
    const PlotPicture picture = shown.plot.picture();
    QTEST(labels(picture.yTicks), "labels");
    QVERIFY(QRectF(shown.plot.rect()).contains(picture.canvas));
    QVERIFY(count(Theme::current().accent, shown.plot) > 100);
}

void TstPanelTouch::gapsStayOpen()
{
    Plot plot(QStringLiteral("plot"));
    plot.resize(500, 300);
    QVERIFY(plot.picture().xTicks.isEmpty()); // no axes without points
    double time = 0;
    for (const double y : {1., 2., qQNaN(), 2., 1., 1.})
        plot.add(time++, y);
    const QVector<QPolygonF> curves = plot.picture().curves;
    QCOMPARE(curves.size(), 2);
    QCOMPARE(curves.first().size(), 2);
    QCOMPARE(curves.last().size(), 3);
}

void TstPanelTouch::touchAsksForATime()
{
    ShownPlot shown(minutes, milliohms, 301, 0.001, 0.002);
    QSignalSpy touched(&shown.plot, &Plot::touched);
    const QVector<PlotPicture::Tick> ticks = shown.plot.picture().xTicks;
    const int x = int((placeOf("2", ticks) + placeOf("3", ticks)) / 2);
    QTest::mouseClick(&shown.plot, Qt::LeftButton, {}, {1, 20}); // beside the axis
    QCOMPARE(touched.size(), 0);
    QTest::mouseClick(&shown.plot, Qt::LeftButton, {}, {x, 20});
    QCOMPARE(touched.size(), 1);
    const double time = touched.first().first().toDouble();
    QVERIFY2(std::abs(time - 150) < 2, qPrintable(QString::number(time)));
}

void TstPanelTouch::pointIsMarked()
{
    ShownPlot shown(minutes, milliohms, 301, 0.001, 0.002);
    const QImage before = shown.plot.grab().toImage();
    QCOMPARE(shown.plot.markedText(), QString());
    shown.plot.mark({120, 0.001}, QStringLiteral("1.0000 m\u2126"));
    QCOMPARE(shown.plot.markedText(), QStringLiteral("1.0000 m\u2126"));
    const PlotPicture picture = shown.plot.picture();
    QCOMPARE(picture.mark.x(), placeOf("2", picture.xTicks));
    QCOMPARE(picture.mark.y(), placeOf("1.0", picture.yTicks));
    QCOMPARE(shown.plot.grab().toImage().pixelColor(picture.mark.toPoint()),
             Theme::current().surface); // the middle of the ring
    shown.plot.unmark();
    QCOMPARE(shown.plot.grab().toImage(), before);
    const LogCapture log;
    shown.plot.mark({120, std::nan("")}, QStringLiteral("open"));
    QVERIFY(shown.plot.grab().toImage() != before);
    QCOMPARE(log.lines(), QStringList()); // nothing that Qt cannot draw
}

void TstPanelTouch::boundsAreDrawn_data()
{
    QTest::addColumn<double>("bound");
    QTest::addColumn<QString>("label");
    QTest::addColumn<bool>("hasLine");
    QTest::newRow("between the values") << 0.0015 << "High" << true;
    QTest::newRow("near above") << 0.0022 << "High" << true;
    QTest::newRow("far above") << 1. << QStringLiteral("High \u2191") << false;
    QTest::newRow("far below") << -1. << QStringLiteral("High \u2193") << false;
}

void TstPanelTouch::boundsAreDrawn()
{
    QFETCH(double, bound);
    QFETCH(bool, hasLine);
    ShownPlot shown(seconds, milliohms, 10, 0.001, 0.002);
    QCOMPARE(count(Theme::current().alarm, shown.plot), 0);
    shown.plot.setBounds({{bound, QStringLiteral("High")}});
    const PlotPicture picture = shown.plot.picture();
    QCOMPARE(picture.bounds.size(), 1);
    const PlotPicture::BoundLine &line = picture.bounds.first();
    QTEST(line.text, "label");
    QCOMPARE(line.isInView, hasLine);
    const double one = placeOf("1.0", picture.yTicks);
    const double two = placeOf("2.0", picture.yTicks);
    if (hasLine)
        QCOMPARE(line.y, one + (bound / 0.001 - 1) * (two - one));
    else
        QCOMPARE(line.y, bound > 0 ? picture.canvas.top() : picture.canvas.bottom());
    QVERIFY(picture.canvas.top() < two && one < picture.canvas.bottom()); // the curve stays in view
    // Half of the dashed line, and more than the letters have.
    QCOMPARE(count(Theme::current().alarm, shown.plot) > picture.canvas.width() / 2, hasLine);
}

// --- the value

void TstPanelTouch::verdictIsAsLargeAsTheUnit_data()
{
    QTest::addColumn<QSize>("window");
    QTest::addColumn<QSize>("display"); // on the Measure page
    QTest::newRow("800 x 480") << QSize(800, 480) << QSize(628, 202);
    QTest::newRow("1024 x 600") << QSize(1024, 600) << QSize(810, 250);
    QTest::newRow("480 x 320") << QSize(480, 320) << QSize(464, 120);
}

void TstPanelTouch::verdictIsAsLargeAsTheUnit()
{
    QFETCH(QSize, window);
    QFETCH(QSize, display);
    Theme::fit(window);
    ValueDisplay value(QStringLiteral("value"));
    value.resize(display);
    value.setValue(QStringLiteral("1.2347 m\u2126"));
    for (const char *verdict : {"Pass", "Fail", "Dobry", "Gut"}) {
        value.setVerdict(QLatin1String(verdict), QString(), ValueDisplay::Passed);
        QCOMPARE(value.verdictSize(), value.unitSize());
    }
    QVERIFY(value.unitSize() >= Theme::px(20));
}

void TstPanelTouch::statesDifferInTheirShape()
{
    Theme::use(colourless());
    QVector<QImage> signs;
    QVector<QImage> values;
    QVector<QImage> lines;
    for (const auto state :
         {ValueDisplay::Idle, ValueDisplay::Passed, ValueDisplay::Failed, ValueDisplay::Unjudged}) {
        QImage sign(64, 64, QImage::Format_RGB32);
        sign.fill(Qt::white);
        QPainter painter(&sign);
        ValueDisplay::paintSign(painter, QRectF(2, 2, 60, 60), state);
        painter.end();
        ValueDisplay value(QStringLiteral("value"));
        value.resize(628, 202);
        value.setValue(QStringLiteral("1.2347 m\u2126"));
        value.setVerdict(QString(), QString(),
                         state); // without text, so that only the shape differs
        VerdictLabel line(QStringLiteral("line"));
        line.resize(200, line.height());
        line.setVerdict(QString(), state);
        for (const QImage &other : std::as_const(signs))
            QVERIFY(other != sign);
        for (const QImage &other : std::as_const(values))
            QVERIFY(other != value.grab().toImage());
        for (const QImage &other : std::as_const(lines))
            QVERIFY(other != line.grab().toImage());
        signs += sign;
        values += value.grab().toImage();
        lines += line.grab().toImage();
    }
}

// --- lists

void TstPanelTouch::choiceStaysWithItsRow()
{
    TouchList list(QStringLiteral("list"));
    const auto rowOf = [](int id, const char *title) {
        TouchRow row = TouchRow::of(QLatin1String(title));
        row.id = id;
        return row;
    };
    list.setRows({rowOf(1, "a"), rowOf(2, "b"), rowOf(3, "b")});
    list.choose(1);
    list.setRows({rowOf(2, "b"), rowOf(3, "b")});
    QCOMPARE(list.chosenRow()->id, 2);
    list.setRows({rowOf(3, "b"), rowOf(2, "renamed")});
    QCOMPARE(list.chosenRow()->title, QStringLiteral("renamed"));
    list.setRows({rowOf(3, "b")});
    QVERIFY(!list.chosenRow());
    list.setRows({rowOf(0, "a"), rowOf(0, "b")});
    list.choose(1);
    list.setRows({rowOf(0, "b")}); // rows without ids are recognised by their titles
    QCOMPARE(list.currentRow(), 0);
}

void TstPanelTouch::rowsAreRequestedWhenVisible()
{
    constexpr int many = 10000;
    int asked = 0;
    TouchList list(QStringLiteral("list"));
    list.resize(200, 480);
    list.setSource(
        [&asked](int index) {
            ++asked;
            return TouchRow::of(QString::number(index));
        },
        many);
    list.grow(many + 1);
    QCOMPARE(asked, 0); // the list is not visible
    QCOMPARE(list.verticalScrollBar()->maximum(), 0); // no row has been laid out either
    list.show();
    const auto isLastInView = [&list] {
        return list.viewport()->rect().contains(list.rowRect(list.rowCount() - 1).center());
    };
    QTRY_VERIFY(isLastInView());
    asked = 0;
    list.grow(many + 2);
    QVERIFY(isLastInView());
    list.viewport()->repaint();
    const int inView = list.viewport()->height() / Theme::target() + 2;
    QVERIFY2(asked > 0 && asked <= inView, qPrintable(QString::number(asked)));
}

KTV_PANEL_TEST_MAIN(TstPanelTouch)
#include "tst_panel_touch.moc"

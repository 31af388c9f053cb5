#include "pages/RecordPage.h"

#include "common/Words.h"
#include "touch/Buttons.h"
#include "touch/Indicators.h"
#include "touch/Plot.h"
#include "touch/Sheets.h"
#include "touch/Theme.h"
#include "touch/TouchList.h"

#include <configuration/KTV_Configuration.h>
#include <datasource/KTV_DataSource.h>

#include <QGridLayout>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

using Buzzer::BuzzerClass;

namespace {

constexpr int intervals[] = {200, 500, 1000, 5000, 10000, 60000}; // ms
constexpr int counts[] = {10, 25, 50, 100, 1000, 10000, Series::capacity};
constexpr int sideWidth = 214;

template <size_t size> int indexOf(const int (&values)[size], int value)
{
    return int(std::find(std::begin(values), std::end(values), value) - std::begin(values));
}

/** Indexed by TimeScale::Unit. */
const Text timeUnits[] = {
    Text {"Units", "second", "s"},
    Text {"Units", "minute", "min"},
    Text {"Units", "hour", "h"},
};

} // namespace

RecordPage::RecordPage(Texts &texts, Session &session)
    : Page(texts, session)
    , m_plot(new Plot(QStringLiteral("record.plot")))
    , m_view(new Choice(QStringLiteral("record.view"), 2))
    , m_views(new QStackedWidget)
    , m_table(new TouchList(QStringLiteral("record.table")))
    , m_what(label(QStringLiteral("record.what"), "quiet"))
    , m_status(label(QStringLiteral("record.status"), "quiet"))
    , m_verdict(new VerdictLabel(QStringLiteral("record.verdict")))
    , m_reason(label(QStringLiteral("record.reason"), "quiet"))
    , m_client(new FieldButton(QStringLiteral("record.client")))
    , m_interval(new FieldButton(QStringLiteral("record.interval")))
    , m_count(new FieldButton(QStringLiteral("record.count")))
    , m_start(new TouchButton(QStringLiteral("record.start"), TouchButton::Primary))
    , m_save(new TouchButton(QStringLiteral("record.save")))
{
    layOut();
    connect(m_client, &QPushButton::clicked, this, [this] { chooseClient({}); });
    connect(m_interval, &QPushButton::clicked, this, &RecordPage::chooseInterval);
    connect(m_count, &QPushButton::clicked, this, &RecordPage::chooseCount);
    connect(m_start, &QPushButton::clicked, this, &RecordPage::toggle);
    connect(m_save, &QPushButton::clicked, this, &RecordPage::save);
    connect(&session.recorder(), &Recorder::added, this, &RecordPage::takeReading);
    connect(&session.recorder(), &Recorder::stateChanged, this, [this] {
        refresh();
        refreshSeries();
    });
    connect(m_plot, &Plot::touched, this, &RecordPage::readPoint);
    connect(m_view, &Choice::chosen, m_views, &QStackedWidget::setCurrentIndex);
    connect(&session.recorder(), &Recorder::settingsChanged, this, &RecordPage::refresh);
    connect(&session.recorder(), &Recorder::saved, this, &RecordPage::showSaved);
    connect(&session.setup(), &Setup::changed, this, &RecordPage::refresh);
    texts.applyNowAndOnChange(this, [this] {
        refresh();
        refreshSeries();
    });
}

void RecordPage::layOut()
{
    texts().translate(m_client, Text {"Record", "client", "Client"});
    texts().translate(m_interval, Text {"Record", "interval", "Interval"});
    texts().translate(m_count, Text {"Record", "count", "Number of measurements"});
    texts().translate(m_save, Text {"Record", "save", "Save"});

    texts().translate(m_view->part(0), Text {"Panel", "figures", "Figures"});
    texts().translate(m_view->part(1), Text {"Panel", "values", "Values"});
    m_view->setCurrent(0);
    m_views->addWidget(makeFigures());
    m_views->addWidget(m_table);

    auto *head = new QHBoxLayout;
    head->addWidget(m_what, 1);
    head->addWidget(m_status);
    column()->addLayout(head);
    auto *side = new QWidget;
    side->setFixedWidth(Theme::px(sideWidth));
    auto *sideColumn = new QVBoxLayout(side);
    sideColumn->setContentsMargins(0, 0, 0, 0);
    sideColumn->setSpacing(Theme::gap());
    sideColumn->addWidget(m_view);
    sideColumn->addWidget(m_views, 1);
    auto *series = new QHBoxLayout;
    series->setSpacing(Theme::gap());
    series->addWidget(m_plot, 1);
    series->addWidget(side);
    column()->addLayout(series, 1);
    auto *settings = new QHBoxLayout;
    settings->setSpacing(Theme::gap());
    settings->addWidget(m_client, 1);
    settings->addWidget(m_interval, 1);
    settings->addWidget(m_count, 1);
    column()->addLayout(settings);
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(Theme::gap());
    buttons->addWidget(m_save, 1);
    buttons->addWidget(m_start, 2);
    column()->addLayout(buttons);
}

QWidget *RecordPage::makeFigures()
{
    auto *figures = new QWidget;
    auto *grid = new QGridLayout(figures);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setVerticalSpacing(Theme::px(2));
    grid->addWidget(m_verdict, 0, 0, 1, 2);
    grid->addWidget(m_reason, 1, 0, 1, 2);
    m_reason->setWordWrap(true);
    addFigure(grid, Text {"Panel", "countOf", "Count"}, "record.figure.count");
    addFigure(grid, Text {"Panel", "minimum", "Minimum"}, "record.figure.minimum");
    addFigure(grid, Text {"Panel", "maximum", "Maximum"}, "record.figure.maximum");
    addFigure(grid, Text {"Panel", "mean", "Mean"}, "record.figure.mean");
    addFigure(grid, Text {"Panel", "deviation", "Std. deviation"}, "record.figure.deviation");
    grid->setRowStretch(grid->rowCount(), 1);
    return figures;
}

void RecordPage::addFigure(QGridLayout *grid, const Text &captionText, const char *name)
{
    QLabel *figure = label(QLatin1String(name), "");
    figure->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    const int row = grid->rowCount();
    grid->addWidget(caption(captionText), row, 0);
    grid->addWidget(figure, row, 1);
    m_figures += figure;
}

// --- showing

bool RecordPage::isThere() const
{
    return !recorder().series().isEmpty() || recorder().isRunning();
}

void RecordPage::refresh()
{
    // Describes the present series or, if there is none, the next one.
    const Setup &setup = session().setup();
    const SeriesConditions &conditions = recorder().series().conditions();
    const bool isThere = this->isThere();
    const ReadingFormat format = isThere ? conditions.format : setup.format();
    QStringList what {isThere ? conditions.meterName
                              : library().getMainConfig()->get_MeterFullName()};
    what += format.currentText();
    what += isThere ? conditions.material : setup.isCompensated() ? setup.material() : QString();
    what += isThere ? Setup::objectText(conditions.objectType, conditions.objectName)
                    : Setup::objectText(setup.objectType(), setup.objectName());
    what.removeAll(QString());
    m_what->setText(what.join(QStringLiteral("   ")));
    m_client->setValue(recorder().client().isEmpty() ? text(Text {"Panel", "none", "None"})
                                                     : recorder().client());
    m_interval->setValue(Words::seconds(texts(), recorder().interval()));
    m_count->setValue(QString::number(recorder().wanted()));
    const bool isRunning = recorder().isRunning();
    m_client->setEnabled(!isRunning);
    m_interval->setEnabled(!isRunning);
    m_count->setEnabled(!isRunning);
    m_start->setText(isRunning ? text(Text {"Measure", "stop", "Stop"})
                               : text(Text {"Measure", "start", "Start"}));
    m_start->setEnabled(!recorder().isSaving());
    m_save->setEnabled(!isRunning && !recorder().isSaving() && !recorder().series().isEmpty());
}

void RecordPage::refreshSeries()
{
    if (!isVisible())
        return; // enter() refreshes the page
    const Series &series = recorder().series();
    plotAnew();
    m_table->setSource(
        [this](int index) {
            return TouchRow::of(recorder().series().text(index), QString::number(index + 1));
        },
        series.count());
    refreshFigures();
}

void RecordPage::takeReading()
{
    if (!isVisible())
        return; // enter() shows all readings
    const int index = recorder().series().count() - 1;
    if (index == 0 || m_plotted != index) {
        refreshSeries();
        return;
    }
    plot(index);
    refreshAxes();
    m_plot->refresh();
    m_table->grow(index + 1);
    refreshFigures();
}

void RecordPage::plot(int index)
{
    const Series &series = recorder().series();
    m_plot->add(series.seconds(index), series.shown(index));
    m_plotted = index + 1;
}

void RecordPage::plotAnew()
{
    const Series &series = recorder().series();
    const ReadingFormat &format = series.conditions().format;
    m_plot->clear();
    m_plotted = 0;
    while (m_plotted < series.count())
        plot(m_plotted);
    QVector<Plot::Bound> bounds;
    const Limit &limit = series.conditions().limit;
    const struct
    {
        Text name;
        const QString &bound;
    } lines[] = {{Text {"Lists", "low", "Low"}, limit.low},
                 {Text {"Lists", "high", "High"}, limit.high}};
    for (const auto &line : lines) {
        const float number = Limit::number(format.quantity, line.bound);
        if (!std::isnan(number) && !series.isEmpty())
            bounds +=
                {double(number),
                 text(line.name) + QLatin1Char(' ') + Limit::text(format.quantity, line.bound)};
    }
    m_plot->setBounds(bounds);
    refreshAxes();
    m_plot->refresh();
}

void RecordPage::refreshAxes()
{
    const AxisScale values = recorder().series().valueScale();
    const TimeScale time = recorder().series().timeScale();
    m_plot->setAxes({time.divisor, text(timeUnits[time.unit])}, {values.divisor, values.unit});
}

void RecordPage::refreshFigures()
{
    const Series &series = recorder().series();
    const SeriesFigures &figures = series.figures();
    m_figures.at(0)->setText(figures.count);
    m_figures.at(1)->setText(figures.minimum);
    m_figures.at(2)->setText(figures.maximum);
    m_figures.at(3)->setText(figures.mean);
    m_figures.at(4)->setText(figures.deviation);
    refreshVerdict();
    refreshStatus();
}

void RecordPage::refreshVerdict()
{
    const Series &series = recorder().series();
    Words::VerdictWords words;
    if (!series.isEmpty() && !series.conditions().limit.name.isEmpty())
        words = Words::verdict(texts(), series.verdict(), true);
    if (words.state == ValueDisplay::Failed)
        words.headline += QStringLiteral(" %1 / %2").arg(series.failed()).arg(series.count());
    m_verdict->setVerdict(words.headline, words.state);
    m_reason->setText(words.reason);
    m_reason->setVisible(!words.reason.isEmpty());
}

void RecordPage::refreshStatus()
{
    const Series &series = recorder().series();
    const int wanted = isThere() ? series.conditions().wanted : recorder().wanted();
    QString status = QStringLiteral("%1 / %2").arg(series.count()).arg(wanted);
    if (recorder().isSaving())
        status = text(Text {"Panel", "saving", "Saving the series"});
    else if (recorder().isUnsaved() && !recorder().isRunning())
        status += QStringLiteral("   ") + text(Text {"Panel", "notSaved", "Not saved"});
    m_status->setText(status);
}

void RecordPage::readPoint(double seconds)
{
    const Series &series = recorder().series();
    const int index = series.nearest(seconds);
    if (index < 0)
        return;
    m_plot->mark({series.seconds(index), series.shown(index)}, series.text(index));
}

// --- recording

void RecordPage::toggle()
{
    if (recorder().isRunning())
        recorder().stop();
    else if (recorder().isUnsaved())
        new ConfirmSheet(
            texts(), this,
            Text {"Panel", "confirmDrop", "The series is not saved. Drop it for a new one?"},
            Text {"Panel", "dropSeries", "Drop the series"}, [this] { recorder().start(); });
    else
        recorder().start();
}

void RecordPage::save()
{
    if (recorder().client().isEmpty())
        chooseClient([this] { recorder().save(); });
    else
        recorder().save();
}

void RecordPage::showSaved(const SeriesFile::Result &result)
{
    if (result.outcome == SeriesFile::Outcome::Saved) {
        session().tones().play(BuzzerClass::Tone_Saved);
        new MessageSheet(texts(), this, Text {"Record", "saved", "The result was saved"},
                         result.path);
        return;
    }
    fail(result.outcome == SeriesFile::Outcome::CardFull
             ? Text {"Record", "memoryFull", "No space left on the memory card"}
             : operationFailed);
}

// --- choosing

void RecordPage::chooseClient(const std::function<void()> &then)
{
    new FormSheet(texts(), this, Text {"Record", "client", "Client"},
                  {{Text {"Record", "client", "Client"}, TextField::Letters, recorder().client()}},
                  [this, then](const QStringList &lines) {
                      if (lines.first().isEmpty())
                          return text(Text {"Dialogs", "enterName", "Enter a name"});
                      recorder().setClient(lines.first());
                      if (then)
                          then();
                      return QString();
                  });
}

void RecordPage::chooseInterval()
{
    QVector<TouchRow> rows;
    for (const int interval : intervals)
        rows += TouchRow::of(Words::seconds(texts(), interval));
    new PickSheet(texts(), this, Text {"Record", "interval", "Interval"}, rows,
                  indexOf(intervals, recorder().interval()),
                  [this](int index) { recorder().setInterval(intervals[index]); });
}

void RecordPage::chooseCount()
{
    QVector<TouchRow> rows;
    for (const int count : counts)
        rows += TouchRow::of(QString::number(count));
    new PickSheet(texts(), this, Text {"Record", "count", "Number of measurements"}, rows,
                  indexOf(counts, recorder().wanted()),
                  [this](int index) { recorder().setWanted(counts[index]); });
}

#include "pages/RecordPage.h"

#include "pages/Words.h"
#include "touch/Buttons.h"
#include "touch/Indicators.h"
#include "touch/Sheets.h"
#include "touch/Theme.h"
#include "touch/TouchList.h"

#include <configuration/KTV_Configuration.h>
#include <datasource/KTV_DataSource.h>
#include <valuebox/NumericalValueBox.h>

#include <QVBoxLayout>

using Buzzer::BuzzerClass;
using ValueBox::NumericalValueBox;

namespace {

constexpr int intervals[] = {200, 500, 1000, 5000, 10000, 60000}; // ms
constexpr int counts[] = {10, 25, 50, 100, 1000, 10000, Series::capacity};
constexpr int tableWidth = 240;

template <size_t size> int indexOf(const int (&values)[size], int value)
{
    return static_cast<int>(std::find(std::begin(values), std::end(values), value)
                            - std::begin(values));
}

} // namespace

RecordPage::RecordPage(Texts &texts, Session &session)
    : Page(texts, session)
    , m_plot(new Plot(QStringLiteral("record.plot")))
    , m_table(new TouchList(QStringLiteral("record.table")))
    , m_what(label(QStringLiteral("record.what"), "quiet"))
    , m_status(label(QStringLiteral("record.status"), "quiet"))
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
    connect(&session.recorder(), &Recorder::added, this, &RecordPage::showSeries);
    connect(&session.recorder(), &Recorder::stateChanged, this, &RecordPage::refresh);
    connect(&session.recorder(), &Recorder::settingsChanged, this, &RecordPage::refresh);
    connect(&session.recorder(), &Recorder::saved, this, &RecordPage::tellSaved);
    connect(&session.setup(), &Setup::changed, this, &RecordPage::refresh);
    texts.keep(this, [this] { refresh(); });
}

void RecordPage::layOut()
{
    texts().translate(m_client, Text {"Record", "client", "Client"});
    texts().translate(m_interval, Text {"Record", "interval", "Interval"});
    texts().translate(m_count, Text {"Record", "count", "Number of measurements"});
    texts().translate(m_save, Text {"Record", "save", "Save"});

    column()->addWidget(m_what);
    auto *series = new QHBoxLayout;
    series->setSpacing(Theme::gap);
    series->addWidget(m_plot, 1);
    m_table->setFixedWidth(tableWidth);
    series->addWidget(m_table);
    column()->addLayout(series, 1);
    column()->addWidget(m_status);
    auto *settings = new QHBoxLayout;
    settings->setSpacing(Theme::gap);
    settings->addWidget(m_client, 1);
    settings->addWidget(m_interval, 1);
    settings->addWidget(m_count, 1);
    column()->addLayout(settings);
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(Theme::gap);
    buttons->addWidget(m_save, 1);
    buttons->addWidget(m_start, 2);
    column()->addLayout(buttons);
}

// --- showing

void RecordPage::refresh()
{
    const Setup &setup = session().setup();
    QString what = library().getMainConfig()->get_MeterModelName();
    if (setup.quantity() != Quantity::Temperature)
        what += QStringLiteral("   ")
            + NumericalValueBox::formatIinduction(
                    NumericalValueBox::ConvertTestI_ToFlota(setup.current()))
            + QStringLiteral("   ") + setup.material();
    m_what->setText(what);
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
    m_save->setEnabled(!isRunning && !recorder().isSaving() && !recorder().series().isEmpty());
    showSeries();
}

void RecordPage::showSeries()
{
    const Series &series = recorder().series();
    QVector<float> values;
    QVector<TouchRow> rows;
    for (int i = 0; i < series.count(); ++i) {
        values += series.value(i);
        rows += TouchRow::of(series.text(i), QString::number(i + 1));
    }
    const Form &form = series.conditions().form;
    m_plot->setValues(values);
    m_plot->setScale(Reading(series.maximum(), form).text, Reading(series.minimum(), form).text);
    m_table->setRows(rows);
    m_table->scrollToBottom();
    m_status->setText(QStringLiteral("%1 / %2").arg(series.count()).arg(recorder().wanted()));
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

void RecordPage::tellSaved(const SeriesFile::Result &result)
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

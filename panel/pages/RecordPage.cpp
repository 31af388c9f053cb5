#include "pages/RecordPage.h"

#include "meter/Result.h"
#include "touch/Buttons.h"
#include "touch/Indicators.h"
#include "touch/Sheets.h"
#include "touch/Theme.h"

#include <configuration/KTV_Configuration.h>
#include <configuration/KTV_InterfaceConfig.h>
#include <counters/KTV_Liczniki.h>
#include <datasource/KTV_DataSource.h>
#include <tools/Tools.h>
#include <valuebox/NumericalValueBox.h>

#include <QDate>
#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QVBoxLayout>

#include <cmath>

using Buzzer::BuzzerClass;
using QERNTools::Tools;
using ValueBox::NumericalValueBox;

namespace {

constexpr int intervals[] = {200, 500, 1000, 5000}; // ms
constexpr int counts[] = {10, 25, 50, 100};
constexpr int tableWidth = 240;

TouchRow titled(const QString &title)
{
    TouchRow row;
    row.title = title;
    return row;
}

QString quoted(QString text)
{
    return QLatin1Char('"') + text.replace(QLatin1Char('"'), QLatin1String("\"\""))
        + QLatin1Char('"');
}

} // namespace

RecordPage::RecordPage(Context &context)
    : Page(context)
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
    load();
    connect(m_client, &QPushButton::clicked, this, &RecordPage::chooseClient);
    connect(m_interval, &QPushButton::clicked, this, &RecordPage::chooseInterval);
    connect(m_count, &QPushButton::clicked, this, &RecordPage::chooseCount);
    connect(m_start, &QPushButton::clicked, this, &RecordPage::toggle);
    connect(m_save, &QPushButton::clicked, this, &RecordPage::save);
    connect(&context.hardware(), &Hardware::reading, this, &RecordPage::takeReading);
    connect(&context.hardware(), &Hardware::stopped, this, [this] {
        m_isRecording = false;
        refresh();
    });
    connect(&context, &Context::setupChanged, this, &RecordPage::forgetSeries);
    context.keep(this, [this] { refresh(); });
}

void RecordPage::layOut()
{
    context().translate(m_client, Text {"Record", "client", "Client"});
    context().translate(m_interval, Text {"Record", "interval", "Interval"});
    context().translate(m_count, Text {"Record", "count", "Number of measurements"});
    context().translate(m_save, Text {"Record", "save", "Save"});

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

void RecordPage::enter()
{
    load(); // a factory reset may have taken the last setting away
    refresh();
}

void RecordPage::leave()
{
    if (m_isRecording)
        context().hardware().stop();
}

void RecordPage::load()
{
    const QJsonObject stored =
        QJsonDocument::fromJson(
            library()
                .get_InterfaceConfig()
                ->getValue(KTV_InterfaceConfig::TEST_Rejestrator_LastSetting, QString())
                .toUtf8())
            .object();
    m_clientName = stored.value(QLatin1String("client")).toString();
    m_intervalMs = stored.value(QLatin1String("interval")).toInt(intervals[0]);
    m_wanted = stored.value(QLatin1String("count")).toInt(counts[1]);
}

void RecordPage::store()
{
    const QJsonObject stored {{QStringLiteral("client"), m_clientName},
                              {QStringLiteral("interval"), m_intervalMs},
                              {QStringLiteral("count"), m_wanted}};
    library().get_InterfaceConfig()->setValue(
        KTV_InterfaceConfig::TEST_Rejestrator_LastSetting,
        QString::fromUtf8(QJsonDocument(stored).toJson(QJsonDocument::Compact)));
    refresh();
}

// --- recording

void RecordPage::toggle()
{
    if (m_isRecording) {
        context().hardware().stop();
        return;
    }
    forgetSeries();
    m_isRecording = true;
    if (context().setup().kind() == Setup::Resistance)
        library().getLiczniki()->Up_Licznik_RejestracjaObiektowRezystancyjnych();
    if (context().setup().kind() == Setup::Inductance)
        library().getLiczniki()->Up_Licznik_RejestracjaObiektowIndukcyjnych();
    context().hardware().start(m_intervalMs);
    refresh();
}

void RecordPage::takeReading(float value)
{
    if (!m_isRecording)
        return;
    m_series += {QTime::currentTime(), value, Result(context(), value).text};
    if (m_series.size() >= m_wanted)
        context().hardware().stop();
    showSeries();
}

void RecordPage::forgetSeries()
{
    m_series.clear();
    refresh();
}

// --- showing

void RecordPage::refresh()
{
    const Setup &setup = context().setup();
    QString what = library().getMainConfig()->get_MeterModelName();
    if (setup.kind() != Setup::Temperature)
        what += QStringLiteral("   ")
            + NumericalValueBox::formatIinduction(
                    NumericalValueBox::ConvertTestI_ToFlota(setup.current))
            + QStringLiteral("   ") + setup.material;
    m_what->setText(what);
    m_client->setValue(m_clientName.isEmpty() ? context().text(Text {"Panel", "none", "None"})
                                              : m_clientName);
    m_interval->setValue(NumericalValueBox::autoFormat(static_cast<float>(m_intervalMs) / 1000,
                                                       ValueBox::Unit_None, ValueBox::Prefix_None,
                                                       1, true)
                         + context().text(Text {"Units", "second", "s"}));
    m_count->setValue(QString::number(m_wanted));
    for (TouchButton *setting :
         {static_cast<TouchButton *>(m_client), static_cast<TouchButton *>(m_interval),
          static_cast<TouchButton *>(m_count)})
        setting->setEnabled(!m_isRecording);
    m_start->setText(m_isRecording ? context().text(Text {"Measure", "stop", "Stop"})
                                   : context().text(Text {"Measure", "start", "Start"}));
    m_save->setEnabled(!m_isRecording && !m_series.isEmpty());
    showSeries();
}

void RecordPage::showSeries()
{
    QVector<float> values;
    QVector<TouchRow> rows;
    float low = std::numeric_limits<float>::quiet_NaN();
    float high = low;
    for (int i = 0; i < m_series.size(); ++i) {
        const Entry &entry = m_series.at(i);
        values += entry.value;
        low = std::fmin(low, entry.value);
        high = std::fmax(high, entry.value);
        TouchRow row;
        row.title = Result(context(), entry.value).text;
        row.detail = QString::number(i + 1);
        rows += row;
    }
    m_plot->setValues(values);
    m_plot->setScale(Result(context(), high).text, Result(context(), low).text);
    m_table->setRows(rows);
    m_table->scrollToBottom();
    m_status->setText(QStringLiteral("%1 / %2").arg(m_series.size()).arg(m_wanted));
}

// --- choosing

void RecordPage::chooseClient()
{
    new FormSheet(context(), this, Text {"Record", "client", "Client"},
                  {{Text {"Record", "client", "Client"}, TextField::Letters, m_clientName}},
                  [this](const QStringList &lines) {
                      if (lines.first().isEmpty())
                          return context().text(Text {"Dialogs", "enterName", "Enter a name"});
                      m_clientName = lines.first();
                      store();
                      return QString();
                  });
}

void RecordPage::chooseInterval()
{
    QVector<TouchRow> rows;
    for (const int interval : intervals)
        rows += titled(NumericalValueBox::autoFormat(static_cast<float>(interval) / 1000,
                                                     ValueBox::Unit_None, ValueBox::Prefix_None, 1,
                                                     true)
                       + context().text(Text {"Units", "second", "s"}));
    const int chosen =
        static_cast<int>(std::find(std::begin(intervals), std::end(intervals), m_intervalMs)
                         - std::begin(intervals));
    new PickSheet(context(), this, Text {"Record", "interval", "Interval"}, rows, chosen,
                  [this](int index) {
                      m_intervalMs = intervals[index];
                      store();
                  });
}

void RecordPage::chooseCount()
{
    QVector<TouchRow> rows;
    for (const int count : counts)
        rows += titled(QString::number(count));
    const int chosen = static_cast<int>(std::find(std::begin(counts), std::end(counts), m_wanted)
                                        - std::begin(counts));
    new PickSheet(context(), this, Text {"Record", "count", "Number of measurements"}, rows, chosen,
                  [this](int index) {
                      m_wanted = counts[index];
                      store();
                  });
}

// --- saving

void RecordPage::save()
{
    if (m_clientName.isEmpty()) {
        chooseClient();
        return;
    }
    // A folder of its own for the client; a name of dots only would lead out of it.
    QString folder = Tools::validFileName(m_clientName);
    if (folder.startsWith(QLatin1Char('.')))
        folder.prepend(QLatin1Char('_'));
    const QString directory =
        library().getMainConfig()->get_clientsDirectory() + folder + QLatin1Char('/');
    const QString base =
        Tools::validFileName(QDate::currentDate().toString(QStringLiteral("yyyy-MM-dd")));
    QDir().mkpath(directory);
    const QString name = Tools::findFreeFileName(directory, base, QStringLiteral("csv"));

    // Whole or not at all: a full card leaves no half of a series behind. The flush is not
    // for nothing: commit() does not notice that what was buffered finds no room.
    QSaveFile file(directory + name);
    const QByteArray content = csv();
    const bool isSaved = file.open(QIODevice::WriteOnly) && file.write(content) == content.size()
        && file.flush() && file.commit();
    library().updateTimeDisk();
    if (!isSaved) {
        const qint64 free = Tools::getFreeSpace(library().getMainConfig()->get_clientsDirectory());
        fail(free >= 0 && free < content.size()
                 ? Text {"Record", "memoryFull", "No space left on the memory card"}
                 : operationFailed);
        return;
    }
    context().sound(BuzzerClass::Tone_Saved);
    new MessageSheet(context(), this, Text {"Record", "saved", "The result was saved"},
                     directory + name);
}

QByteArray RecordPage::csv() const
{
    QString text = QStringLiteral("number,time,value,shown\r\n");
    for (int i = 0; i < m_series.size(); ++i) {
        const Entry &entry = m_series.at(i);
        const QString value = std::isnan(entry.value)
            ? QString()
            : QString::number(static_cast<double>(entry.value), 'g', 7);
        text += QStringLiteral("%1,%2,%3,")
                    .arg(i + 1)
                    .arg(entry.time.toString(QStringLiteral("HH:mm:ss.zzz")), value);
        text += quoted(entry.text) + QLatin1String("\r\n");
    }
    return text.toUtf8();
}

#include "meter/Recorder.h"

#include "meter/LastSetting.h"
#include "meter/Setup.h"

#include <configuration/KTV_Configuration.h>
#include <counters/KTV_Liczniki.h>

#include <QtConcurrent>

namespace {

constexpr int firstInterval = 200; // ms
constexpr int firstCount = 25;

} // namespace

Recorder::Recorder(KTV_InterfaceConfig &settings, const KTV_Configuration &meter,
                   const Setup &setup, Hardware &hardware, KTV_Liczniki &counters, QObject *parent)
    : QObject(parent)
    , m_settings(settings)
    , m_meter(meter)
    , m_setup(setup)
    , m_hardware(hardware)
    , m_counters(counters)
{
    load();
    connect(&m_texts, &QTimer::timeout, this, &Recorder::makeTexts);
    connect(&m_saving, &QFutureWatcher<SeriesFile::Result>::finished, this, [this] {
        const SeriesFile::Result result = m_saving.result();
        m_isSaving = false;
        m_isSaved = m_isSaved || result.outcome == SeriesFile::Outcome::Saved;
        emit stateChanged();
        emit saved(result);
    });
}

Recorder::~Recorder()
{
    if (m_texts.isActive()) {
        m_series.makeTexts(m_series.count());
        write();
    }
    m_saving.waitForFinished();
}

// --- settings

void Recorder::load()
{
    const QJsonObject stored =
        LastSetting::read(m_settings, KTV_InterfaceConfig::TEST_Rejestrator_LastSetting);
    m_client = stored.value(QLatin1String("client")).toString();
    m_interval = stored.value(QLatin1String("interval")).toInt(firstInterval);
    m_wanted = qBound(1, stored.value(QLatin1String("count")).toInt(firstCount), Series::capacity);
    emit settingsChanged();
}

void Recorder::keep()
{
    LastSetting::write(m_settings, KTV_InterfaceConfig::TEST_Rejestrator_LastSetting,
                       {{QStringLiteral("client"), m_client},
                        {QStringLiteral("interval"), m_interval},
                        {QStringLiteral("count"), m_wanted}});
    emit settingsChanged();
}

void Recorder::setClient(const QString &client)
{
    m_client = client;
    keep();
}

void Recorder::setInterval(int milliseconds)
{
    m_interval = milliseconds;
    keep();
}

void Recorder::setWanted(int count)
{
    m_wanted = count;
    keep();
}

// --- recording

void Recorder::start()
{
    if (isSaving() || !m_hardware.start(m_interval, *this))
        return;
    SeriesConditions conditions;
    conditions.format = m_setup.format();
    conditions.meterName = m_meter.get_MeterFullName();
    conditions.serialNumber = m_meter.get_SerialNumber();
    if (m_setup.isCompensated()) {
        conditions.material = m_setup.material();
        conditions.alpha = m_setup.alpha();
    }
    if (m_setup.canJudge())
        conditions.limit = m_setup.limit();
    conditions.objectType = m_setup.objectType();
    conditions.objectName = m_setup.objectName();
    conditions.interval = m_interval;
    conditions.wanted = m_wanted;
    conditions.start = QDateTime::currentDateTime();
    m_series = Series(conditions);
    m_isSaved = false;
    if (m_setup.quantity() == Quantity::Resistance)
        m_counters.Up_Licznik_RejestracjaObiektowRezystancyjnych();
    if (m_setup.quantity() == Quantity::Inductance)
        m_counters.Up_Licznik_RejestracjaObiektowIndukcyjnych();
    m_clock.start();
    emit stateChanged();
}

void Recorder::stop()
{
    if (isRunning())
        m_hardware.stop();
}

void Recorder::receive(float value)
{
    m_series.add(m_clock.elapsed(), value);
    emit added();
    if (m_series.count() >= m_series.conditions().wanted)
        m_hardware.stop();
}

void Recorder::end()
{
    m_series.figures(); // made while the meter is still the same
    emit stateChanged();
}

void Recorder::refreshTexts()
{
    m_series.refreshTexts();
    emit stateChanged();
}

// --- saving

void Recorder::save()
{
    if (isSaving() || isRunning())
        return;
    m_isSaving = true;
    m_texts.start();
    emit stateChanged();
    makeTexts();
}

/**
 * The library's texts belong to this thread. Makes some at a time, so that the thread stays
 * responsive.
 */
void Recorder::makeTexts()
{
    constexpr int most = 1000;
    if (m_series.makeTexts(most))
        write();
}

void Recorder::write()
{
    m_texts.stop();
    m_saving.setFuture(QtConcurrent::run([head = SeriesFile::head(m_series), series = m_series,
                                          directory = m_meter.get_clientsDirectory(),
                                          client = m_client, day = QDate::currentDate()] {
        return SeriesFile::save(head, series, directory, client, day);
    }));
}

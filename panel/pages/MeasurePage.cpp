#include "pages/MeasurePage.h"

#include "meter/Result.h"
#include "pages/ObjectSheet.h"
#include "touch/Buttons.h"
#include "touch/Indicators.h"
#include "touch/Sheets.h"
#include "touch/Theme.h"

#include <configuration/KTV_Configuration.h>
#include <counters/KTV_Liczniki.h>
#include <datalist/KTV_DataList.h>
#include <datalist/LimitList_Element.h>
#include <datalist/MaterialList_Element.h>
#include <datasource/KTV_DataSource.h>
#include <valuebox/NumericalValueBox.h>

#include <QGridLayout>
#include <QVBoxLayout>

#include <limits>
#include <memory>
#include <numeric>

using Buzzer::BuzzerClass;
using ValueBox::NumericalValueBox;

namespace {

constexpr int readingInterval = 150; // ms
constexpr int readingsOfResult = 6;

struct KindRow
{
    Text name;
    void (KTV_Liczniki::*count)();
};

/** By Setup::Kind. */
const KindRow kinds[] = {
    {Text {"Measure", "resistance", "Resistance"},
     &KTV_Liczniki::Up_Licznik_PomiarObiektowRezystancyjnych},
    {Text {"Panel", "inductance", "Inductance"},
     &KTV_Liczniki::Up_Licznik_PomiarObiektowIndukcyjnych},
    {Text {"Panel", "temperature", "Temperature"},
     &KTV_Liczniki::Up_Licznik_PomiarTemperaturySilnika},
};

/** Meters that can be simulated: the model follows from the first two characters. */
const QLatin1String serialNumbers[] = {
    QLatin1String("JD10233"), QLatin1String("CH20417"), QLatin1String("EL20590"),
    QLatin1String("JB20871"), QLatin1String("DV42006"), QLatin1String("DW44019"),
};

QString currentText(ValueBox::testI current)
{
    return NumericalValueBox::formatIinduction(NumericalValueBox::ConvertTestI_ToFlota(current));
}

TouchRow titled(const QString &title, const QString &detail = QString())
{
    TouchRow row;
    row.title = title;
    row.detail = detail;
    return row;
}

} // namespace

MeasurePage::MeasurePage(Context &context)
    : Page(context)
    , m_kind(new Choice(QStringLiteral("measure.kind"), std::size(kinds)))
    , m_display(new ValueDisplay(QStringLiteral("measure.value")))
    , m_meter(new FieldButton(QStringLiteral("measure.meter")))
    , m_current(new FieldButton(QStringLiteral("measure.current")))
    , m_compensation(new FieldButton(QStringLiteral("measure.compensation")))
    , m_limit(new FieldButton(QStringLiteral("measure.limit")))
    , m_object(new FieldButton(QStringLiteral("measure.object")))
    , m_start(new TouchButton(QStringLiteral("measure.start"), TouchButton::Primary))
    , m_value(std::numeric_limits<float>::quiet_NaN())
{
    layOut();
    connect(m_kind, &Choice::chosen, this, [this](int kind) {
        this->context().hardware().stop();
        this->context().setup().setKind(static_cast<Setup::Kind>(kind));
        emit this->context().setupChanged();
    });
    connect(m_meter, &QPushButton::clicked, this, &MeasurePage::chooseMeter);
    connect(m_current, &QPushButton::clicked, this, &MeasurePage::chooseCurrent);
    connect(m_compensation, &QPushButton::clicked, this, &MeasurePage::chooseMaterial);
    connect(m_limit, &QPushButton::clicked, this, &MeasurePage::chooseLimit);
    connect(m_object, &QPushButton::clicked, this,
            [this] { new ObjectSheet(this->context(), this); });
    connect(m_start, &QPushButton::clicked, this, &MeasurePage::toggle);
    connect(&context.hardware(), &Hardware::reading, this, &MeasurePage::takeReading);
    connect(&context.hardware(), &Hardware::stopped, this, [this] {
        m_isMeasuring = false;
        refresh();
    });
    connect(&context, &Context::setupChanged, this, &MeasurePage::takeSetup);
    context.keep(this, [this] { refresh(); });
}

void MeasurePage::layOut()
{
    for (size_t kind = 0; kind < std::size(kinds); ++kind)
        context().translate(m_kind->part(static_cast<int>(kind)), kinds[kind].name);
    context().translate(m_meter, Text {"Panel", "meter", "Meter"});
    context().translate(m_current, Text {"Measure", "testCurrent", "Test current"});
    context().translate(m_compensation,
                        Text {"Measure", "compensation", "Temperature compensation"});
    context().translate(m_limit, Text {"Panel", "limit", "Limit"});
    context().translate(m_object, Text {"Panel", "object", "Simulated object"});

    column()->addWidget(m_kind);
    column()->addWidget(m_display, 1);
    auto *grid = new QGridLayout;
    grid->setSpacing(Theme::gap);
    grid->addWidget(m_meter, 0, 0);
    grid->addWidget(m_current, 0, 1);
    grid->addWidget(m_compensation, 0, 2);
    grid->addWidget(m_limit, 1, 0);
    grid->addWidget(m_object, 1, 1);
    grid->addWidget(m_start, 1, 2);
    m_start->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored);
    for (int i = 0; i < grid->columnCount(); ++i)
        grid->setColumnStretch(i, 1);
    column()->addLayout(grid);
}

void MeasurePage::leave()
{
    if (m_isMeasuring)
        context().hardware().stop();
}

// --- measuring

void MeasurePage::toggle()
{
    if (m_isMeasuring) {
        context().hardware().stop();
        return;
    }
    forgetResult();
    m_isMeasuring = true;
    context().hardware().start(readingInterval);
    refresh();
}

void MeasurePage::takeReading(float value)
{
    if (!m_isMeasuring)
        return;
    m_readings += value;
    m_value = std::accumulate(m_readings.cbegin(), m_readings.cend(), 0.F)
        / static_cast<float>(m_readings.size());
    if (m_readings.size() == readingsOfResult)
        finish();
    else
        showValue(m_value);
}

void MeasurePage::finish()
{
    (library().getLiczniki()->*kinds[context().setup().kind()].count)();
    context().hardware().stop();
    const Result result(context(), m_value);
    context().setLastResult(result.text);
    if (std::isnan(m_value))
        context().sound(BuzzerClass::Tone_Error_Measure);
    else if (result.verdict != Result::NotJudged)
        context().sound(result.verdict == Result::Pass ? BuzzerClass::Tone_Measure_Pass
                                                       : BuzzerClass::Tone_Measure_Fail);
}

void MeasurePage::forgetResult()
{
    m_readings.clear();
    m_value = std::numeric_limits<float>::quiet_NaN();
    refresh();
}

void MeasurePage::takeSetup()
{
    context().setup().refreshCurrent();
    context().setup().save();
    forgetResult();
}

// --- showing

void MeasurePage::refresh()
{
    const Setup &setup = context().setup();
    const bool isTemperature = setup.kind() == Setup::Temperature;
    const KTV_Configuration *meter = library().getMainConfig();
    m_kind->setCurrent(setup.kind());
    m_meter->setValue(meter->get_MeterModelName() + QLatin1Char(' ') + meter->get_SerialNumber());
    m_current->setValue(isTemperature ? QString() : currentText(setup.current));
    m_current->setEnabled(!isTemperature);
    const QString none = context().text(Text {"Panel", "none", "None"});
    m_compensation->setValue(isTemperature               ? QString()
                                 : setup.isCompensated() ? setup.material
                                                         : none);
    m_compensation->setEnabled(!isTemperature);
    // The lists know limits of resistance and of temperature.
    const bool canJudge = setup.kind() != Setup::Inductance;
    m_limit->setValue(!canJudge ? QString() : setup.limitName.isEmpty() ? none : setup.limitName);
    m_limit->setEnabled(canJudge);
    m_object->setValue(ObjectSheet::summary(context()));
    m_start->setText(m_isMeasuring ? context().text(Text {"Measure", "stop", "Stop"})
                                   : context().text(Text {"Measure", "start", "Start"}));

    QString caption = context().text(kinds[setup.kind()].name);
    if (setup.isCompensated() && !isTemperature)
        caption += QStringLiteral("   ")
            + NumericalValueBox::formatTemperature(Setup::referenceTemperature)
            + QStringLiteral("   \u03B1 ") + QString::number(setup.alpha) + QLatin1Char(' ')
            + NumericalValueBox::getAlphaUnit();
    m_display->setCaption(caption);
    showValue(m_value);
}

void MeasurePage::showValue(float value)
{
    const Result result(context(), value);
    m_display->setValue(result.text);
    m_display->setNote(Result::limitText(context()));
    if (m_isMeasuring)
        m_display->setVerdict(context().text(Text {"Panel", "measuring", "Measuring"}),
                              ValueDisplay::Idle);
    else if (m_readings.isEmpty())
        m_display->setVerdict(QString(), ValueDisplay::Idle);
    else if (std::isnan(value))
        m_display->setVerdict(context().text(Text {"Measure", "leadOpen", "Current lead is open"}),
                              ValueDisplay::Failed);
    else if (result.verdict == Result::Pass)
        m_display->setVerdict(context().text(Text {"Measure", "pass", "Pass"}),
                              ValueDisplay::Passed);
    else if (result.verdict == Result::Fail)
        m_display->setVerdict(context().text(Text {"Measure", "fail", "Fail"}),
                              ValueDisplay::Failed);
    else
        m_display->setVerdict(context().text(Text {"Panel", "done", "Done"}), ValueDisplay::Idle);
}

// --- choosing

void MeasurePage::chooseMeter()
{
    QVector<TouchRow> rows;
    int chosen = -1;
    for (const QLatin1String serial : serialNumbers) {
        if (serial == library().getMainConfig()->get_SerialNumber())
            chosen = rows.size();
        rows += titled(serial);
    }
    rows += titled(context().text(Text {"Panel", "otherSerial", "Another serial number"}));
    new PickSheet(context(), this, Text {"About", "serialNumber", "Serial number"}, rows, chosen,
                  [this](int index) {
                      if (index < static_cast<int>(std::size(serialNumbers))) {
                          context().setSerialNumber(serialNumbers[index]);
                          return;
                      }
                      new FormSheet(context(), this,
                                    Text {"About", "serialNumber", "Serial number"},
                                    {{Text {"About", "serialNumber", "Serial number"},
                                      TextField::Letters, QString()}},
                                    [this](const QStringList &lines) {
                                        context().setSerialNumber(lines.first());
                                        return QString();
                                    });
                  });
}

void MeasurePage::chooseCurrent()
{
    QVector<TouchRow> rows;
    const QList<ValueBox::testI> currents = context().setup().testCurrents();
    for (const ValueBox::testI current : currents)
        rows += titled(currentText(current));
    new PickSheet(context(), this, Text {"Measure", "testCurrent", "Test current"}, rows,
                  currents.indexOf(context().setup().current), [this, currents](int index) {
                      context().setup().current = currents.at(index);
                      emit context().setupChanged();
                  });
}

void MeasurePage::chooseMaterial()
{
    QVector<TouchRow> rows {titled(context().text(Text {"Panel", "none", "None"}))};
    QVector<double> alphas {0};
    int chosen = 0;
    const std::unique_ptr<QList<MaterialList_Element *>> materials(
        library().get_DataList()->GetMaterials(true, true, QString(), 0));
    if (materials) {
        for (const MaterialList_Element *material : std::as_const(*materials)) {
            if (material->Name == context().setup().material)
                chosen = rows.size();
            rows += titled(material->Name,
                           QString::number(material->Alpha) + QLatin1Char(' ')
                               + NumericalValueBox::getAlphaUnit());
            alphas += material->Alpha;
        }
        qDeleteAll(*materials);
    }
    new PickSheet(context(), this, Text {"Measure", "compensation", "Temperature compensation"},
                  rows, chosen, [this, rows, alphas](int index) {
                      context().setup().material = index > 0 ? rows.at(index).title : QString();
                      context().setup().alpha = alphas.at(index);
                      emit context().setupChanged();
                  });
}

void MeasurePage::chooseLimit()
{
    struct Limit
    {
        QString low;
        QString high;
    };
    QVector<TouchRow> rows {titled(context().text(Text {"Panel", "none", "None"}))};
    QVector<Limit> limits(1);
    int chosen = 0;
    KTV_DataList *lists = library().get_DataList();
    const std::unique_ptr<QList<LimitList_Element *>> stored(
        context().setup().kind() == Setup::Temperature ? lists->GetLimits_T(QString(), 0)
                                                       : lists->GetLimits_R(QString(), 0));
    if (stored) {
        for (const LimitList_Element *limit : std::as_const(*stored)) {
            if (limit->Name == context().setup().limitName)
                chosen = rows.size();
            rows +=
                titled(limit->Name, limit->LoLimit + QStringLiteral(" \u2026 ") + limit->HighLimit);
            limits += {limit->LoLimit, limit->HighLimit};
        }
        qDeleteAll(*stored);
    }
    new PickSheet(context(), this, Text {"Panel", "limit", "Limit"}, rows, chosen,
                  [this, rows, limits](int index) {
                      Setup &setup = context().setup();
                      setup.limitName = index > 0 ? rows.at(index).title : QString();
                      setup.lowLimit = limits.at(index).low;
                      setup.highLimit = limits.at(index).high;
                      emit context().setupChanged();
                  });
}

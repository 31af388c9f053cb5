#include "pages/MeasurePage.h"

#include "common/TestObjectSheet.h"
#include "common/Words.h"
#include "meter/Hardware.h"
#include "touch/Buttons.h"
#include "touch/Sheets.h"
#include "touch/Theme.h"

#include <configuration/KTV_Configuration.h>
#include <datasource/KTV_DataSource.h>
#include <valuebox/NumericalValueBox.h>

#include <QGridLayout>
#include <QVBoxLayout>

using ValueBox::NumericalValueBox;

namespace {

constexpr Text noneText = Text {"Panel", "none", "None"};
constexpr Quantity quantities[] = {Quantity::Resistance, Quantity::Inductance,
                                   Quantity::Temperature};

/** The rows of a PickSheet, and which one is chosen at present. */
struct PickRows
{
    QVector<TouchRow> rows;
    int chosen = -1;

    void add(const TouchRow &row, bool isChosen)
    {
        if (isChosen)
            chosen = int(rows.size());
        rows += row;
    }
};

} // namespace

MeasurePage::MeasurePage(Texts &texts, Session &session)
    : Page(texts, session)
    , m_quantity(new Choice(QStringLiteral("measure.kind"), std::size(quantities)))
    , m_display(new ValueDisplay(QStringLiteral("measure.value")))
    , m_meter(new FieldButton(QStringLiteral("measure.meter")))
    , m_current(new FieldButton(QStringLiteral("measure.current")))
    , m_compensation(new FieldButton(QStringLiteral("measure.compensation")))
    , m_limit(new FieldButton(QStringLiteral("measure.limit")))
    , m_object(new FieldButton(QStringLiteral("measure.object")))
    , m_testObject(new FieldButton(QStringLiteral("measure.testObject")))
    , m_start(new TouchButton(QStringLiteral("measure.start"), TouchButton::Primary))
{
    layOut();
    connect(m_quantity, &Choice::chosen, this, [this](int quantity) {
        measurement().stop();
        setup().setQuantity(quantities[quantity]);
    });
    connect(m_meter, &QPushButton::clicked, this, &MeasurePage::chooseMeter);
    connect(m_current, &QPushButton::clicked, this, &MeasurePage::chooseCurrent);
    connect(m_compensation, &QPushButton::clicked, this, &MeasurePage::chooseMaterial);
    connect(m_limit, &QPushButton::clicked, this, &MeasurePage::chooseLimit);
    connect(m_object, &QPushButton::clicked, this, &MeasurePage::chooseObject);
    connect(m_testObject, &QPushButton::clicked, this,
            [this] { new TestObjectSheet(this->texts(), setup(), this); });
    connect(m_start, &QPushButton::clicked, this, &MeasurePage::toggle);
    connect(&session.measurement(), &Measurement::changed, this, &MeasurePage::refreshValue);
    connect(&session.setup(), &Setup::changed, this, &MeasurePage::refresh);
    connect(&session.recorder(), &Recorder::stateChanged, this, &MeasurePage::refresh);
    texts.applyNowAndOnChange(this, [this] { refresh(); });
}

void MeasurePage::layOut()
{
    for (const Quantity quantity : quantities) {
        QPushButton *part = m_quantity->part(int(quantity));
        texts().applyNowAndOnChange(
            part, [this, part, quantity] { part->setText(Words::quantity(texts(), quantity)); });
    }
    texts().translate(m_meter, Text {"Panel", "meter", "Meter"});
    texts().translate(m_current, Text {"Measure", "testCurrent", "Test current"});
    texts().translate(m_compensation, Text {"Panel", "compensation", "Compensation"});
    texts().translate(m_limit, Text {"Panel", "limit", "Limit"});
    texts().translate(m_object, Text {"Panel", "measuredObject", "Object"});
    texts().translate(m_testObject, Text {"Panel", "object", "Simulated object"});

    column()->addWidget(m_quantity);
    column()->addWidget(m_display, 1);
    constexpr int columns = 4;
    auto *grid = new QGridLayout;
    grid->setSpacing(Theme::gap());
    int cell = 0;
    for (FieldButton *field :
         {m_meter, m_current, m_compensation, m_limit, m_object, m_testObject}) {
        grid->addWidget(field, cell / columns, cell % columns);
        ++cell;
    }
    grid->addWidget(m_start, cell / columns, cell % columns, 1, columns - cell % columns);
    m_start->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored);
    for (int i = 0; i < columns; ++i)
        grid->setColumnStretch(i, 1);
    column()->addLayout(grid);
}

void MeasurePage::leave()
{
    measurement().stop();
}

void MeasurePage::toggle()
{
    measurement().isRunning() ? measurement().stop() : measurement().start();
}

// --- showing

void MeasurePage::refresh()
{
    const bool isTemperature = setup().quantity() == Quantity::Temperature;
    // The setup must not change while a series is recorded.
    const bool isFree = !session().recorder().isRunning();
    const KTV_Configuration *meter = library().getMainConfig();
    const QString none = text(noneText);
    const auto orNone = [&none](const QString &value) { return value.isEmpty() ? none : value; };
    m_quantity->setCurrent(int(setup().quantity()));
    m_meter->setValue(meter->get_MeterModelName() + QLatin1Char(' ') + meter->get_SerialNumber());
    m_current->setValue(isTemperature ? QString() : testCurrentText(setup().current()));
    m_compensation->setValue(isTemperature ? QString() : orNone(setup().material()));
    m_limit->setValue(setup().canJudge() ? orNone(setup().limit().name) : QString());
    m_object->setValue(orNone(Setup::objectText(setup().objectType(), setup().objectName())));
    m_testObject->setValue(TestObjectSheet::summary(texts(), setup()));
    m_quantity->setEnabled(isFree);
    m_meter->setEnabled(isFree);
    m_current->setEnabled(isFree && !isTemperature);
    m_compensation->setEnabled(isFree && !isTemperature);
    m_limit->setEnabled(isFree && setup().canJudge());
    m_object->setEnabled(isFree);
    m_testObject->setEnabled(isFree);
    m_start->setEnabled(isFree);

    QString caption = Words::quantity(texts(), setup().quantity());
    if (setup().isCompensated())
        caption += QStringLiteral("   ")
            + NumericalValueBox::formatTemperature(Setup::referenceTemperature)
            + QStringLiteral("   \u03B1 ") + QString::number(setup().alpha()) + QLatin1Char(' ')
            + NumericalValueBox::getAlphaUnit();
    m_display->setCaption(caption);
    m_display->setNote(setup().canJudge()
                           ? Words::bounds(texts(), setup().quantity(), setup().limit())
                           : QString());
    refreshValue();
}

void MeasurePage::refreshValue()
{
    m_start->setText(measurement().isRunning() ? text(Text {"Measure", "stop", "Stop"})
                                               : text(Text {"Measure", "start", "Start"}));
    m_display->setValue(measurement().reading().text);
    Words::VerdictWords words;
    if (session().recorder().isRunning())
        words.headline = text(Text {"Panel", "recording", "Recording"});
    else if (measurement().isRunning())
        words.headline = text(Text {"Panel", "measuring", "Measuring"});
    else if (measurement().isDone())
        words = Words::verdict(texts(), measurement().verdict(),
                               setup().canJudge() && !setup().limit().name.isEmpty());
    m_display->setVerdict(words.headline, words.reason, words.state);
}

// --- choosing

void MeasurePage::chooseMeter()
{
    constexpr Text title = Text {"About", "serialNumber", "Serial number"};
    const QStringList serials = Hardware::serialNumbers();
    PickRows rows;
    for (const QString &serial : serials)
        rows.add(TouchRow::of(serial), serial == library().getMainConfig()->get_SerialNumber());
    rows.add(TouchRow::of(text(Text {"Panel", "otherSerial", "Another serial number"})), false);
    new PickSheet(texts(), this, title, rows.rows, rows.chosen, [this, serials](int index) {
        if (index < serials.size())
            session().setSerialNumber(serials.at(index));
        else
            writeMeter();
    });
}

void MeasurePage::writeMeter()
{
    constexpr Text title = Text {"About", "serialNumber", "Serial number"};
    new FormSheet(texts(), this, title, {{title, TextField::Letters, QString()}},
                  [this](const QStringList &lines) {
                      session().setSerialNumber(lines.first());
                      return QString();
                  });
}

void MeasurePage::chooseCurrent()
{
    QVector<TouchRow> rows;
    const QList<ValueBox::testI> currents = setup().testCurrents();
    for (const ValueBox::testI current : currents)
        rows += TouchRow::of(testCurrentText(current));
    new PickSheet(texts(), this, Text {"Measure", "testCurrent", "Test current"}, rows,
                  int(currents.indexOf(setup().current())),
                  [this, currents](int index) { setup().setCurrent(currents.at(index)); });
}

void MeasurePage::chooseMaterial()
{
    const QString now = setup().material();
    PickRows rows;
    rows.add(TouchRow::of(text(noneText)), now.isEmpty());
    const QVector<Lists::Entry> materials = session().lists().entries(Lists::Materials);
    for (const Lists::Entry &material : materials)
        rows.add(TouchRow::of(material.values.at(0),
                              material.values.at(1) + QLatin1Char(' ')
                                  + NumericalValueBox::getAlphaUnit()),
                 material.values.at(0) == now);
    new PickSheet(texts(), this, Text {"Measure", "compensation", "Temperature compensation"},
                  rows.rows, rows.chosen, [this, materials](int index) {
                      const QStringList values = materials.value(index - 1).values;
                      setup().setMaterial(values.value(0), values.value(1).toDouble());
                  });
}

void MeasurePage::chooseLimit()
{
    const Quantity quantity = setup().quantity();
    const QString now = setup().limit().name;
    PickRows rows;
    rows.add(TouchRow::of(text(noneText)), now.isEmpty());
    QVector<Limit> limits(1);
    const QVector<Lists::Entry> entries = session().lists().entries(
        quantity == Quantity::Temperature ? Lists::TemperatureLimits : Lists::ResistanceLimits);
    for (const Lists::Entry &entry : entries) {
        const Limit limit {entry.values.at(0), Limit::kept(quantity, entry.values.at(1)),
                           Limit::kept(quantity, entry.values.at(2))};
        rows.add(TouchRow::of(limit.name, Words::bounds(texts(), quantity, limit)),
                 limit.name == now);
        limits += limit;
    }
    new PickSheet(texts(), this, Text {"Panel", "limit", "Limit"}, rows.rows, rows.chosen,
                  [this, limits](int index) { setup().setLimit(limits.at(index)); });
}

void MeasurePage::chooseObject()
{
    chooseEntry(Text {"Panel", "objectType", "Type of the object"}, Lists::ObjectTypes,
                setup().objectType(), [this](const QString &type) {
                    setup().setObject(type, setup().objectName());
                    chooseEntry(Text {"Panel", "objectName", "Name of the object"},
                                Lists::ObjectNames, setup().objectName(),
                                [this](const QString &name) {
                                    setup().setObject(setup().objectType(), name);
                                });
                });
}

void MeasurePage::chooseEntry(const Text &title, Lists::Family family, const QString &now,
                              const std::function<void(const QString &)> &take)
{
    PickRows rows;
    rows.add(TouchRow::of(text(noneText)), now.isEmpty());
    for (const Lists::Entry &entry : session().lists().entries(family))
        rows.add(TouchRow::of(entry.values.at(0)), entry.values.at(0) == now);
    new PickSheet(texts(), this, title, rows.rows, rows.chosen, [rows, take](int index) {
        take(index > 0 ? rows.rows.at(index).title : QString());
    });
}

#include "common/TestObjectSheet.h"

#include "meter/Setup.h"
#include "touch/Buttons.h"
#include "touch/Texts.h"
#include "touch/Theme.h"

#include <valuebox/NumericalValueBox.h>

#include <QGridLayout>
#include <QVBoxLayout>

#include <algorithm>

using ValueBox::NumericalValueBox;

namespace {

/** A property of the object, its steps, and how it is shown. */
struct QuantityRow
{
    Text name;
    float TestObject::*value;
    QVector<float> steps;
    QString (*text)(const Texts &texts, float value);
};

QString ohms(const Texts &, float value)
{
    return value < 1.F
        ? NumericalValueBox::autoFormat(value, ValueBox::Unit_Ohm, ValueBox::Prefix_m, 4, true)
        : NumericalValueBox::autoFormat(value, ValueBox::Unit_Ohm, ValueBox::Prefix_None, 4, true);
}

QString henries(const Texts &, float value)
{
    return NumericalValueBox::autoFormat(value, ValueBox::Unit_None, ValueBox::Prefix_m, 2, true)
        + henry;
}

QString percent(const Texts &texts, float value)
{
    return NumericalValueBox::autoFormat(value, ValueBox::Unit_None, ValueBox::Prefix_None, 2, true)
        + texts.text(Text {"Units", "percent", "%"});
}

QString degrees(const Texts &, float value)
{
    return NumericalValueBox::formatTemperature(value);
}

const QVector<QuantityRow> &quantities()
{
    static const QVector<QuantityRow> rows {
        {Text {"Measure", "resistance", "Resistance"},
         &TestObject::resistance,
         {0.0000534F, 0.0001867F, 0.0012347F, 0.0153F, 0.1786F, 1.2345F, 14.26F, 187.4F, 1650.F,
          2500.F},
         ohms},
        {Text {"Panel", "inductance", "Inductance"},
         &TestObject::inductance,
         {0.0004F, 0.0153F, 0.87F, 12.5F, 150.F},
         henries},
        {Text {"Panel", "noise", "Noise"},
         &TestObject::noise,
         {0.F, 0.02F, 0.1F, 0.5F, 2.F},
         percent},
        {Text {"Measure", "objectTemperature", "Object temperature"},
         &TestObject::temperature,
         {-10.F, 0.F, 20.F, 23.5F, 40.F, 65.F, 90.F, 120.F},
         degrees},
    };
    return rows;
}

const Text leadsTexts[] = {
    Text {"Panel", "leadsConnected", "Leads connected"},
    Text {"Panel", "leadsOpen", "Leads open"},
    Text {"Panel", "leadsReversed", "Leads swapped"},
};

} // namespace

TestObjectSheet::TestObjectSheet(Texts &texts, Setup &setup, QWidget *somewhere)
    : Sheet(texts, somewhere)
    , m_setup(setup)
    , m_leads(new Choice(QStringLiteral("object.leads"), std::size(leadsTexts)))
{
    constexpr int sheetWidth = 680;
    addTitle(Text {"Panel", "object", "Simulated object"});
    auto *grid = new QGridLayout;
    for (int quantity = 0; quantity < quantities().size(); ++quantity)
        addQuantity(grid, quantity);
    card()->addLayout(grid);
    for (size_t i = 0; i < std::size(leadsTexts); ++i)
        texts.translate(m_leads->part(int(i)), leadsTexts[i]);
    connect(m_leads, &Choice::chosen, this, [this](int leads) {
        TestObject object = m_setup.testObject();
        object.leads = TestObject::Leads(leads);
        m_setup.setTestObject(object);
    });
    card()->addWidget(m_leads);
    auto *close = new TouchButton(QStringLiteral("sheet.ok"), TouchButton::Primary);
    texts.translate(close, Text {"Dialogs", "close", "Close"});
    connect(close, &QPushButton::clicked, this, &TestObjectSheet::finish);
    card()->addWidget(close);
    refresh();
    open(sheetWidth);
}

void TestObjectSheet::addQuantity(QGridLayout *grid, int quantity)
{
    const QString name = QStringLiteral("object.%1").arg(quantity);
    auto *value = new FieldButton(name);
    value->setAttribute(Qt::WA_TransparentForMouseEvents);
    texts().translate(value, quantities().at(quantity).name);
    m_values += value;
    const auto makeStep = [&](const char *part, const QString &sign, int direction) {
        constexpr int stepWidth = 56;
        auto *button = new TouchButton(name + QLatin1String(part));
        button->setText(sign);
        button->setFixedWidth(Theme::px(stepWidth));
        connect(button, &QPushButton::clicked, this,
                [this, quantity, direction] { step(quantity, direction); });
        return button;
    };
    const int row = quantity / 2;
    const int left = (quantity % 2) * 3;
    grid->addWidget(makeStep(".less", QStringLiteral("\u2212"), -1), row, left);
    grid->addWidget(value, row, left + 1);
    grid->addWidget(makeStep(".more", QStringLiteral("+"), +1), row, left + 2);
    grid->setColumnStretch(left + 1, 1);
}

QString TestObjectSheet::summary(const Texts &texts, const Setup &setup)
{
    const TestObject &object = setup.testObject();
    if (object.leads != TestObject::Connected)
        return texts.text(leadsTexts[object.leads]);
    QString temperature = NumericalValueBox::formatTemperature(object.temperature);
    if (setup.quantity() == Quantity::Temperature)
        return temperature;
    const bool isResistance = setup.quantity() == Quantity::Resistance;
    return (isResistance ? ohms(texts, object.resistance) : henries(texts, object.inductance))
        + QStringLiteral(", ") + temperature;
}

void TestObjectSheet::refresh()
{
    const TestObject &object = m_setup.testObject();
    for (int i = 0; i < m_values.size(); ++i) {
        const QuantityRow &row = quantities().at(i);
        m_values.at(i)->setValue(row.text(texts(), object.*row.value));
    }
    m_leads->setCurrent(object.leads);
}

void TestObjectSheet::step(int quantity, int direction)
{
    const QuantityRow &row = quantities().at(quantity);
    TestObject object = m_setup.testObject();
    float &value = object.*row.value;
    const int at =
        int(std::lower_bound(row.steps.cbegin(), row.steps.cend(), value) - row.steps.cbegin());
    value = row.steps.at(qBound(0, at + direction, row.steps.size() - 1));
    m_setup.setTestObject(object);
    refresh();
}

#include "pages/AboutPage.h"

#include "common/Words.h"
#include "touch/Buttons.h"
#include "touch/Indicators.h"
#include "touch/Theme.h"

#include <configuration/KTV_Configuration.h>
#include <counters/KTV_Liczniki.h>
#include <datasource/KTV_DataSource.h>
#include <tools/Tools.h>

#include <QGridLayout>
#include <QVBoxLayout>

#include <memory>

namespace {

struct CounterRow
{
    KTV_Liczniki::Licznik counter;
    Text caption;
};

const CounterRow counters[] = {
    {KTV_Liczniki::Licznik_PomiarObiektowRezystancyjnych,
     Text {"Panel", "countResistive", "Resistive objects"}},
    {KTV_Liczniki::Licznik_PomiarObiektowIndukcyjnych,
     Text {"Panel", "countInductive", "Inductive objects"}},
    {KTV_Liczniki::Licznik_PomiarTemperaturySilnika,
     Text {"Panel", "countTemperature", "Motor temperature"}},
    {KTV_Liczniki::Licznik_RejestracjaObiektowRezystancyjnych,
     Text {"Panel", "countRecordResistive", "Series, resistive"}},
    {KTV_Liczniki::Licznik_RejestracjaObiektowIndukcyjnych,
     Text {"Panel", "countRecordInductive", "Series, inductive"}},
    {KTV_Liczniki::Licznik_AutomatycznyDoborMetody,
     Text {"Panel", "countAutomatic", "Automatic selection"}},
    {KTV_Liczniki::Licznik_Demagnetyzacja, Text {"Panel", "countDemagnetise", "Demagnetisations"}},
};

QLabel *heading(Texts &texts, const Text &text)
{
    auto *label = new QLabel;
    label->setProperty("role", QStringLiteral("title"));
    texts.translate(label, text);
    return label;
}

} // namespace

AboutPage::AboutPage(Texts &texts, Session &session)
    : Page(texts, session)
    , m_card(label(QStringLiteral("about.card"), ""))
    , m_disk(label(QStringLiteral("about.disk"), "quiet"))
    , m_alert(label(QStringLiteral("about.alert"), "alarm"))
    , m_gauge(new Gauge)
{
    auto *upper = new QHBoxLayout;
    upper->setSpacing(2 * Theme::margin());
    upper->addLayout(makeIdentity(), 1);
    upper->addLayout(makeCounters(), 1);
    column()->addLayout(upper, 1);
    layOutCard();
    connect(&session.library(), &KTV_DataSource::changeFreeSpaceAlert, this, &AboutPage::refresh);
    connect(&session, &Session::meterChanged, this, &AboutPage::refresh);
    texts.applyNowAndOnChange(this, [this] { refresh(); });
}

QVBoxLayout *AboutPage::makeIdentity()
{
    auto *facts = new QGridLayout;
    facts->setVerticalSpacing(6);
    facts->setHorizontalSpacing(Theme::margin());
    m_model = addFact(facts, Text {"About", "model", "Model"}, "about.model");
    m_serial = addFact(facts, Text {"About", "serialNumber", "Serial number"}, "about.serial");
    m_interface =
        addFact(facts, Text {"About", "interfaceVersion", "Interface version"}, "about.interface");
    m_system = addFact(facts, Text {"About", "systemVersion", "System version"}, "about.system");
    return under(Text {"About", "title", "About the meter"}, facts);
}

QVBoxLayout *AboutPage::makeCounters()
{
    auto *counts = new QGridLayout;
    counts->setVerticalSpacing(4);
    counts->setHorizontalSpacing(Theme::margin());
    for (const CounterRow &row : counters) {
        m_counters += addFact(counts, row.caption,
                              qPrintable(QStringLiteral("about.counter.%1").arg(int(row.counter))));
        m_counters.last()->setAlignment(Qt::AlignRight);
    }
    return under(Text {"About", "counters", "Measurements made"}, counts);
}

QVBoxLayout *AboutPage::under(const Text &title, QLayout *facts)
{
    auto *part = new QVBoxLayout;
    part->addWidget(heading(texts(), title));
    part->addLayout(facts);
    part->addStretch(1);
    return part;
}

void AboutPage::layOutCard()
{
    auto *cardRow = new QHBoxLayout;
    cardRow->addWidget(heading(texts(), Text {"About", "disk", "Memory card"}));
    cardRow->addStretch(1);
    cardRow->addWidget(m_card);
    column()->addLayout(cardRow);
    column()->addWidget(m_gauge);
    auto *check = new TouchButton(QStringLiteral("about.check"));
    texts().translate(check, Text {"Panel", "checkNow", "Check now"});
    connect(check, &QPushButton::clicked, this, &AboutPage::enter);
    auto *figures = new QHBoxLayout;
    auto *lines = new QVBoxLayout;
    lines->addWidget(m_disk);
    lines->addWidget(m_alert);
    figures->addLayout(lines, 1);
    figures->addWidget(check);
    column()->addLayout(figures);
}

QLabel *AboutPage::addFact(QGridLayout *grid, const Text &captionText, const char *name)
{
    QLabel *fact = label(QLatin1String(name), "");
    const int row = grid->rowCount();
    grid->addWidget(caption(captionText), row, 0);
    grid->addWidget(fact, row, 1);
    grid->setColumnStretch(1, 1);
    return fact;
}

void AboutPage::enter()
{
    library().updateTimeDisk();
    refresh();
}

void AboutPage::refresh()
{
    const KTV_Configuration *meter = library().getMainConfig();
    m_model->setText(meter->get_MeterFullName());
    m_serial->setText(meter->get_SerialNumber());
    m_interface->setText(meter->get_InterfaceVersion());
    m_system->setText(meter->get_SystemVersion());

    const std::unique_ptr<QHash<KTV_Liczniki::Licznik, qint64>> counts(
        library().getLiczniki()->getLiczniki());
    for (int i = 0; i < m_counters.size(); ++i)
        m_counters.at(i)->setText(QString::number(counts->value(counters[i].counter)));

    m_card->setText(QERNTools::Tools::SD_Card_is_OK()
                        ? QString()
                        : text(Text {"Panel", "cardFault", "The card has a fault"}));
    const std::unique_ptr<QERNTools::DiskInfo> disk(library().getDiskInfo());
    m_disk->setText(QStringLiteral("%1 %2     %3 %4     %5 %6")
                        .arg(text(Text {"About", "used", "Used"}), disk->usedText,
                             text(Text {"About", "free", "Free"}), disk->freeText,
                             text(Text {"About", "total", "Total"}), disk->totalText));
    m_alert->setText(Words::cardAlert(texts(), library()));
    m_gauge->setPercent(disk->usedPercent, library().getFreeSpaceAlert() > 0);
}

#include "pages/UsbPage.h"

#include "touch/Sheets.h"
#include "touch/TouchList.h"

#include <QVBoxLayout>

using QERNTools::Tools;

namespace {

struct ChoiceRow
{
    UsbPort::State state;
    Text name;
};

const ChoiceRow choices[] = {
    {{Tools::USB_RNDIS, Tools::RS232_None}, Text {"USB", "network", "Network"}},
    {{Tools::USB_RS232, Tools::RS232_None}, Text {"Panel", "serialFree", "Free"}},
    {{Tools::USB_RS232, Tools::RS232_Console}, Text {"USB", "console", "Console"}},
    {{Tools::USB_RS232, Tools::RS232_HardwareCalibration},
     Text {"USB", "hardwareCalibration", "Hardware calibration"}},
    {{Tools::USB_RS232, Tools::RS232_SystemCalibration},
     Text {"USB", "systemCalibration", "System calibration"}},
};

int choiceOf(const UsbPort::State &state)
{
    for (size_t i = 0; i < std::size(choices); ++i)
        if (choices[i].state == state)
            return int(i);
    return -1;
}

} // namespace

UsbPage::UsbPage(Texts &texts, Session &session)
    : Page(texts, session)
    , m_choices(new TouchList(QStringLiteral("usb.choices")))
    , m_note(label(QStringLiteral("usb.note"), "alarm"))
{
    m_note->setWordWrap(true);
    column()->addWidget(caption(Text {"Panel", "usbShows", "The port shows itself as"}));
    column()->addWidget(m_choices, 1);
    column()->addWidget(m_note);
    column()->addWidget(caption(Text {"Panel", "usbBlocks", "Switching takes up to ten seconds."}));
    connect(m_choices, &TouchList::chosen, this, &UsbPage::switchTo);
    connect(&session.usbPort(), &UsbPort::refreshed, this, &UsbPage::refresh);
    connect(&session.usbPort(), &UsbPort::switched, this, &UsbPage::finish);
    texts.applyNowAndOnChange(this, [this] { refresh(); });
}

void UsbPage::enter()
{
    m_hasFailed = false;
    refresh();
    session().usbPort().refresh();
}

void UsbPage::switchTo(int choice)
{
    if (session().usbPort().isBusy())
        return;
    m_busy = new BusySheet(texts(), this, Text {"USB", "switching", "Switching the port"});
    session().usbPort().switchTo(choices[choice].state);
}

void UsbPage::finish(bool isWell)
{
    if (m_busy)
        m_busy->finish();
    m_hasFailed = !isWell;
    session().tones().play(m_hasFailed ? Buzzer::BuzzerClass::Tone_Error
                                       : Buzzer::BuzzerClass::Tone_Saved);
    refresh();
}

void UsbPage::refresh()
{
    QVector<TouchRow> rows;
    for (const ChoiceRow &choice : choices) {
        TouchRow row;
        row.title = text(choice.name);
        if (choice.state.mode == Tools::USB_RS232)
            row.detail = text(Text {"USB", "serial", "Serial line"});
        rows += row;
    }
    m_choices->setRows(rows);
    m_choices->choose(choiceOf(session().usbPort().state()));
    m_note->setText(m_hasFailed ? failure() : QString());
}

QString UsbPage::failure() const
{
    QString failure = text(Text {"USB", "failed", "The port could not be switched"});
    const QStringList &holders = session().usbPort().holders();
    if (!holders.isEmpty())
        failure += QStringLiteral(": ")
            + text(Text {"Panel", "lineHeldBy", "its serial line is held by"}) + QLatin1Char(' ')
            + holders.join(QStringLiteral(", "));
    return failure;
}

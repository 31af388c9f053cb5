#include "pages/UsbPage.h"

#include "touch/Sheets.h"

#include <datasource/KTV_DataSource.h>

#include <QVBoxLayout>
#include <QtConcurrent>

using QERNTools::Tools;

namespace {

struct ChoiceRow
{
    Tools::USB_Mode mode;
    Tools::RS232_Function owner;
    Text name;
};

const ChoiceRow choices[] = {
    {Tools::USB_RNDIS, Tools::RS232_None, Text {"USB", "network", "Network"}},
    {Tools::USB_RS232, Tools::RS232_None, Text {"Panel", "serialFree", "Free"}},
    {Tools::USB_RS232, Tools::RS232_Console, Text {"USB", "console", "Console"}},
    {Tools::USB_RS232, Tools::RS232_HardwareCalibration,
     Text {"USB", "hardwareCalibration", "Hardware calibration"}},
    {Tools::USB_RS232, Tools::RS232_SystemCalibration,
     Text {"USB", "systemCalibration", "System calibration"}},
};

/** Brings the port into a choice. Blocks as KTV_DataSource::SetUSBMode() does. */
void bring(const KTV_DataSource &facade, const ChoiceRow &choice)
{
    // Asked to give a line to nobody, the library frees it, and then falls back to the
    // network: a line is taken from its owner in so many words.
    if (choice.mode == Tools::USB_RS232 && choice.owner == Tools::RS232_None
        && facade.getUSB_Mode() == Tools::USB_RS232)
        Tools::StopAllRS232Function();
    else
        facade.SetUSBMode(choice.mode, choice.owner);
}

} // namespace

UsbPage::UsbPage(Context &context)
    : Page(context)
    , m_choices(new TouchList(QStringLiteral("usb.choices")))
    , m_note(label(QStringLiteral("usb.note"), "alarm"))
{
    column()->addWidget(caption(Text {"Panel", "usbShows", "The port shows itself as"}));
    column()->addWidget(m_choices, 1);
    column()->addWidget(m_note);
    column()->addWidget(caption(Text {"Panel", "usbBlocks", "Switching takes up to ten seconds."}));
    connect(m_choices, &TouchList::chosen, this, &UsbPage::switchTo);
    connect(&m_work, &QFutureWatcher<State>::finished, this, &UsbPage::finished);
    context.keep(this, [this] { refresh(); });
}

UsbPage::~UsbPage()
{
    m_work.waitForFinished();
}

void UsbPage::enter()
{
    m_hasFailed = false;
    refresh();
    switchTo(-1);
}

void UsbPage::switchTo(int choice)
{
    if (m_work.isRunning())
        return;
    m_wanted = choice;
    if (choice >= 0)
        m_busy = new BusySheet(context(), this, Text {"USB", "switching", "Switching the port"});
    m_work.setFuture(QtConcurrent::run([facade = &library(), choice] {
        if (choice >= 0)
            bring(*facade, choices[choice]);
        State state;
        state.mode = facade->getUSB_Mode();
        state.owner = facade->getRS_Mode();
        return state;
    }));
}

void UsbPage::finished()
{
    m_state = m_work.result();
    if (m_busy)
        m_busy->finish();
    // The switching itself always calls itself a success.
    m_hasFailed = m_wanted >= 0 && choiceOf(m_state) != m_wanted;
    if (m_wanted >= 0)
        context().sound(m_hasFailed ? Buzzer::BuzzerClass::Tone_Error
                                    : Buzzer::BuzzerClass::Tone_Saved);
    refresh();
}

void UsbPage::refresh()
{
    QVector<TouchRow> rows;
    for (const ChoiceRow &choice : choices) {
        TouchRow row;
        row.title = context().text(choice.name);
        if (choice.mode == Tools::USB_RS232)
            row.detail = context().text(Text {"USB", "serial", "Serial line"});
        rows += row;
    }
    m_choices->setRows(rows);
    m_choices->choose(choiceOf(m_state));
    m_note->setText(m_hasFailed
                        ? context().text(Text {"USB", "failed", "The port could not be switched"})
                        : QString());
}

int UsbPage::choiceOf(const State &state)
{
    for (size_t i = 0; i < std::size(choices); ++i)
        if (choices[i].mode == state.mode && choices[i].owner == state.owner)
            return static_cast<int>(i);
    return -1;
}

#include "pages/AccessoriesPage.h"

#include "touch/Buttons.h"
#include "touch/Sheets.h"
#include "touch/Theme.h"

#include <configuration/KTV_Configuration.h>
#include <datasource/KTV_DataSource.h>
#include <language/LangSerwis.h>
#include <platform/Pendrive.h>
#include <platform/PrintOnSato.h>
#include <platform/Update.h>
#include <platform/skanerQR.h>

#include <QDateTime>
#include <QGridLayout>
#include <QVBoxLayout>

AccessoriesPage::AccessoriesPage(Texts &texts, Session &session)
    : Page(texts, session)
    , m_result(label(QStringLiteral("accessories.result"), ""))
    , m_code(label(QStringLiteral("accessories.code"), ""))
    , m_update(label(QStringLiteral("accessories.update"), ""))
    , m_print(new TouchButton(QStringLiteral("accessories.print")))
    , m_scan(new TouchButton(QStringLiteral("accessories.scan")))
    , m_check(new TouchButton(QStringLiteral("accessories.check")))
    , m_files(new TouchList(QStringLiteral("accessories.files")))
    , m_noStick(label(QStringLiteral("accessories.noStick"), "quiet"))
{
    layOut();
    connect(m_print, &QPushButton::clicked, this, &AccessoriesPage::print);
    connect(m_scan, &QPushButton::clicked, this, [this] {
        m_scanned = library().getSkaner()->readCode();
        m_isScanned = true;
        refresh();
    });
    connect(m_check, &QPushButton::clicked, this, &AccessoriesPage::refresh);
    texts.applyNowAndOnChange(this, [this] { refresh(); });
}

void AccessoriesPage::layOut()
{
    texts().translate(m_print, Text {"Record", "print", "Print a label"});
    texts().translate(m_scan, Text {"Record", "scan", "Scan a QR code"});
    texts().translate(m_check, Text {"Panel", "checkNow", "Check now"});
    texts().translate(m_noStick, Text {"USB", "insertStick", "Insert a USB memory"});

    const struct
    {
        Text caption;
        QLabel *value;
        TouchButton *button;
    } rows[] = {
        {Text {"Panel", "lastResult", "Last result"}, m_result, m_print},
        {Text {"Panel", "code", "QR code"}, m_code, m_scan},
        {Text {"Settings", "update", "Update"}, m_update, m_check},
    };
    auto *grid = new QGridLayout;
    grid->setVerticalSpacing(Theme::gap());
    grid->setHorizontalSpacing(Theme::margin());
    grid->setColumnStretch(1, 1);
    for (int row = 0; row < int(std::size(rows)); ++row) {
        grid->addWidget(caption(rows[row].caption), row, 0);
        grid->addWidget(rows[row].value, row, 1);
        grid->addWidget(rows[row].button, row, 2);
        rows[row].value->setWordWrap(true);
    }
    column()->addLayout(grid);
    column()->addWidget(caption(Text {"USB", "stick", "USB memory"}));
    column()->addWidget(m_files, 1);
    column()->addWidget(m_noStick);
}

void AccessoriesPage::refresh()
{
    const QString result = session().measurement().lastResult().text;
    m_result->setText(result.isEmpty() ? text(Text {"Panel", "none", "None"}) : result);
    m_print->setEnabled(!result.isEmpty());
    m_code->setText(m_isScanned && m_scanned.isEmpty()
                        ? text(Text {"Panel", "noCode", "No code before the reader"})
                        : m_scanned);

    const QStringList updates = library().getUpdate()->updateFiles();
    m_update->setText(updates.isEmpty()
                          ? text(Text {"Settings", "updateNone", "No update was found"})
                          : text(Text {"Settings", "updateFound", "An update was found"})
                              + QStringLiteral(": ") + updates.join(QStringLiteral(", ")));
    QVector<TouchRow> rows;
    for (const QString &name : library().getPendrive()->files()) {
        TouchRow row;
        row.title = name;
        row.isMarked = updates.contains(name);
        rows += row;
    }
    m_files->setRows(rows);
    m_noStick->setVisible(rows.isEmpty());
}

void AccessoriesPage::print()
{
    const QString text = labelText();
    if (library().getPrinter()->printLabel(text).isEmpty()) {
        fail();
        return;
    }
    session().tones().play(Buzzer::BuzzerClass::Tone_Saved);
    new MessageSheet(texts(), this, Text {"Panel", "printed", "The label was printed"}, text);
}

QString AccessoriesPage::labelText() const
{
    const KTV_Configuration *meter = library().getMainConfig();
    const LangSerwis *language = library().get_Lang();
    return session().measurement().lastResult().label(
        meter->get_MeterFullName() + QStringLiteral("  ") + meter->get_SerialNumber(),
        QDateTime::currentDateTime().toString(language->getDataFormat() + QLatin1Char(' ')
                                              + language->getTimeFormat()));
}

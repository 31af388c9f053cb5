#include "pages/ListsPage.h"

#include "touch/Buttons.h"
#include "touch/Sheets.h"
#include "touch/Theme.h"

#include <datalist/KTV_DataList.h>
#include <datasource/KTV_DataSource.h>
#include <valuebox/NumericalValueBox.h>

#include <QVBoxLayout>

#include <cmath>

using Buzzer::BuzzerClass;
using ValueBox::NumericalValueBox;

ListsPage::ListsPage(Context &context)
    : Page(context)
    , m_family(new Choice(QStringLiteral("lists.family"), listFamilies().size()))
    , m_search(new TextField(QStringLiteral("lists.search"), TextField::Letters))
    , m_clear(new TouchButton(QStringLiteral("lists.clear")))
    , m_list(new TouchList(QStringLiteral("lists.list")))
    , m_empty(caption(Text {"Lists", "empty", "The list is empty"}))
    , m_add(new TouchButton(QStringLiteral("lists.add"), TouchButton::Primary))
    , m_rename(new TouchButton(QStringLiteral("lists.rename")))
    , m_delete(new TouchButton(QStringLiteral("lists.delete"), TouchButton::Danger))
{
    layOut();
    connect(m_family, &Choice::chosen, this, [this](int index) {
        m_current = index;
        m_search->clear();
        m_list->setRows({});
        refresh();
    });
    connect(m_search, &QLineEdit::textChanged, this, &ListsPage::refresh);
    // Room for what is found, above the keyboard.
    connect(m_search, &TextField::written, m_family, &QWidget::hide);
    connect(m_search, &TextField::finished, m_family, &QWidget::show);
    connect(m_clear, &QPushButton::clicked, m_search, &QLineEdit::clear);
    connect(m_list, &TouchList::chosen, this, &ListsPage::refreshButtons);
    connect(m_add, &QPushButton::clicked, this, [this] { edit(true); });
    connect(m_rename, &QPushButton::clicked, this, [this] { edit(false); });
    connect(m_delete, &QPushButton::clicked, this, &ListsPage::remove);
    connect(&context, &Context::listsChanged, this, &ListsPage::refresh);
    context.keep(this, [this] {
        m_search->setPlaceholderText(this->context().text(Text {"Lists", "search", "Search"}));
    });
    refresh();
}

void ListsPage::layOut()
{
    for (int i = 0; i < listFamilies().size(); ++i) {
        QPushButton *part = m_family->part(i);
        context().translate(part, listFamilies().at(i).shortTitle);
        part->setStyleSheet(QStringLiteral("padding: 0 2px;"));
    }
    m_family->setCurrent(m_current);
    context().translate(m_add, Text {"Lists", "add", "Add"});
    context().translate(m_rename, Text {"Lists", "rename", "Rename"});
    context().translate(m_delete, Text {"Lists", "delete", "Delete"});
    m_clear->setText(QStringLiteral("\u2715"));
    m_clear->setFixedWidth(Theme::target);
    m_clear->setStyleSheet(QStringLiteral("padding: 0;"));

    auto *search = new QHBoxLayout;
    search->addWidget(m_search, 1);
    search->addWidget(m_clear);
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(Theme::gap);
    for (TouchButton *button : {m_add, m_rename, m_delete})
        buttons->addWidget(button, 1);
    column()->addWidget(m_family);
    column()->addLayout(search);
    column()->addWidget(m_list, 1);
    column()->addWidget(m_empty);
    column()->addLayout(buttons);
}

KTV_DataList &ListsPage::lists() const
{
    return *library().get_DataList();
}

void ListsPage::refresh()
{
    m_entries = family().fetch(lists(), m_search->text());
    QVector<TouchRow> rows;
    for (const ListEntry &entry : std::as_const(m_entries)) {
        TouchRow row;
        row.id = entry.id;
        row.title = entry.values.first();
        QStringList details = entry.values.mid(1);
        details.removeAll(QString());
        row.detail = details.join(QStringLiteral(" \u2026 "));
        if (entry.isFactory)
            row.detail +=
                QStringLiteral("   ") + context().text(Text {"Panel", "factory", "factory"});
        row.isMarked = !entry.isFactory;
        rows += row;
    }
    m_list->setRows(rows);
    m_empty->setVisible(rows.isEmpty());
    refreshButtons();
}

void ListsPage::refreshButtons()
{
    const ListEntry *entry = chosenEntry();
    const bool canChange = entry && !entry->isFactory;
    m_rename->setEnabled(canChange);
    m_delete->setEnabled(canChange);
}

const ListEntry *ListsPage::chosenEntry() const
{
    const int index = m_list->currentRow();
    return index >= 0 && index < m_entries.size() ? &m_entries.at(index) : nullptr;
}

void ListsPage::edit(bool isNew)
{
    const ListEntry entry = isNew || !chosenEntry() ? ListEntry() : *chosenEntry();
    QVector<FormSheet::Field> fields;
    for (int i = 0; i < family().fields.size(); ++i)
        fields +=
            {family().fields.at(i).caption, family().fields.at(i).kind, entry.values.value(i)};
    new FormSheet(
        context(), this, isNew ? Text {"Lists", "add", "Add"} : Text {"Lists", "rename", "Rename"},
        fields, [this, isNew, id = entry.id](const QStringList &values) {
            QString problem = problemOf(values);
            if (!problem.isEmpty())
                return problem;
            if (isNew ? family().add(lists(), values) : family().update(lists(), id, values)) {
                changed();
                return QString();
            }
            context().sound(BuzzerClass::Tone_Decline);
            return isNew ? context().text(Text {"Lists", "exists", "This entry exists already"})
                         : context().text(operationFailed);
        });
}

QString ListsPage::problemOf(const QStringList &values) const
{
    if (values.first().isEmpty())
        return context().text(Text {"Dialogs", "enterName", "Enter a name"});
    QVector<float> limits;
    for (int i = 1; i < values.size(); ++i) {
        // A limit may be left out; a coefficient may not.
        const bool isOptional = values.size() > 2;
        const float value = NumericalValueBox::getValue(values.at(i));
        if (std::isnan(value) && !(isOptional && values.at(i).isEmpty()))
            return context().text(Text {"Lists", "wrongNumber", "This is not a number"});
        limits += value;
    }
    if (limits.size() == 2 && limits.at(0) > limits.at(1))
        return context().text(
            Text {"Lists", "lowAboveHigh", "The lower limit is above the upper one"});
    return {};
}

void ListsPage::remove()
{
    new ConfirmSheet(context(), this, Text {"Dialogs", "confirmDelete", "Delete this entry?"},
                     Text {"Lists", "delete", "Delete"}, [this] {
                         const ListEntry *entry = chosenEntry();
                         if (entry && family().remove(lists(), entry->id))
                             changed();
                         else
                             context().sound(BuzzerClass::Tone_Decline);
                     });
}

void ListsPage::changed()
{
    context().sound(BuzzerClass::Tone_Saved);
    emit context().listsChanged();
}

#include "pages/ListsPage.h"

#include "common/Words.h"
#include "touch/Buttons.h"
#include "touch/Keyboard.h"
#include "touch/Sheets.h"
#include "touch/Theme.h"
#include "touch/TouchList.h"

#include <QVBoxLayout>

using Buzzer::BuzzerClass;

namespace {

struct Field
{
    Text caption;
    TextField::Kind kind;
};

constexpr Field nameField = {Text {"Lists", "name", "Name"}, TextField::Letters};
constexpr Text lowText = Text {"Lists", "low", "Low"};
constexpr Text highText = Text {"Lists", "high", "High"};

struct FamilyRow
{
    Text title;
    QVector<Field> fields; ///< one for each value of an entry
};

/** Indexed by Lists::Family. */
const FamilyRow families[] = {
    {Text {"Panel", "types", "Types"}, {nameField}},
    {Text {"Panel", "names", "Names"}, {nameField}},
    {Text {"Panel", "materials", "Materials"},
     {nameField, {Text {"Lists", "alpha", "Coefficient α"}, TextField::Number}}},
    {Text {"Panel", "limitsR", "Limits R"},
     {nameField, {lowText, TextField::NumberWithUnit}, {highText, TextField::NumberWithUnit}}},
    {Text {"Panel", "limitsT", "Limits T"},
     {nameField, {lowText, TextField::Number}, {highText, TextField::Number}}},
};

/** Indexed by Lists::Problem - 1. */
const Text problems[] = {
    Text {"Dialogs", "enterName", "Enter a name"},
    Text {"Lists", "wrongNumber", "This is not a number"},
    Text {"Panel", "enterBound", "Enter a low or a high limit"},
    Text {"Lists", "lowAboveHigh", "The lower limit is above the upper one"},
};

QString detailOf(const Texts &texts, Lists::Family family, const Lists::Entry &entry)
{
    if (family == Lists::Materials)
        return entry.values.at(1);
    if (family != Lists::ResistanceLimits && family != Lists::TemperatureLimits)
        return {};
    const Quantity quantity =
        family == Lists::TemperatureLimits ? Quantity::Temperature : Quantity::Resistance;
    return Words::bounds(texts, quantity,
                         {QString(), Limit::kept(quantity, entry.values.at(1)),
                          Limit::kept(quantity, entry.values.at(2))});
}

} // namespace

ListsPage::ListsPage(Texts &texts, Session &session)
    : Page(texts, session)
    , m_family(new Choice(QStringLiteral("lists.family"), std::size(families)))
    , m_search(new TextField(QStringLiteral("lists.search"), TextField::Letters))
    , m_clear(new TouchButton(QStringLiteral("lists.clear")))
    , m_list(new TouchList(QStringLiteral("lists.list")))
    , m_empty(caption(Text {"Lists", "empty", "The list is empty"}))
    , m_buttons(new QWidget)
    , m_add(new TouchButton(QStringLiteral("lists.add"), TouchButton::Primary))
    , m_rename(new TouchButton(QStringLiteral("lists.rename")))
    , m_delete(new TouchButton(QStringLiteral("lists.delete"), TouchButton::Danger))
{
    layOut();
    connect(m_family, &Choice::chosen, this, [this](int index) {
        m_current = Lists::Family(index);
        m_search->clear();
        m_list->setRows({});
        refresh();
    });
    connect(m_search, &QLineEdit::textChanged, this, &ListsPage::refresh);
    // While the keyboard is open, the results of the search need all the space above it.
    connect(m_search, &TextField::written, this, [this] { setSearching(true); });
    connect(m_search, &TextField::finished, this, [this] { setSearching(false); });
    connect(m_clear, &QPushButton::clicked, m_search, &QLineEdit::clear);
    connect(m_list, &TouchList::chosen, this, &ListsPage::refreshButtons);
    connect(m_add, &QPushButton::clicked, this, [this] { edit(true); });
    connect(m_rename, &QPushButton::clicked, this, [this] { edit(false); });
    connect(m_delete, &QPushButton::clicked, this, &ListsPage::remove);
    connect(&session.lists(), &Lists::changed, this, &ListsPage::refresh);
    texts.applyNowAndOnChange(this, [this] {
        m_search->setPlaceholderText(text(Text {"Lists", "search", "Search"}));
    });
    refresh();
}

void ListsPage::layOut()
{
    for (size_t i = 0; i < std::size(families); ++i) {
        QPushButton *part = m_family->part(int(i));
        texts().translate(part, families[i].title);
        part->setStyleSheet(Theme::scaled(QStringLiteral("padding: 0 2px;")));
    }
    m_family->setCurrent(m_current);
    texts().translate(m_add, Text {"Lists", "add", "Add"});
    texts().translate(m_rename, Text {"Lists", "rename", "Rename"});
    texts().translate(m_delete, Text {"Lists", "delete", "Delete"});
    m_clear->setText(QStringLiteral("\u2715"));
    m_clear->setFixedWidth(Theme::target());
    m_clear->setStyleSheet(Theme::scaled(QStringLiteral("padding: 0;")));

    auto *search = new QHBoxLayout;
    search->addWidget(m_search, 1);
    search->addWidget(m_clear);
    auto *buttons = new QHBoxLayout(m_buttons);
    buttons->setContentsMargins(0, 0, 0, 0);
    buttons->setSpacing(Theme::gap());
    for (TouchButton *button : {m_add, m_rename, m_delete})
        buttons->addWidget(button, 1);
    column()->addWidget(m_family);
    column()->addLayout(search);
    column()->addWidget(m_list, 1);
    column()->addWidget(m_empty);
    column()->addWidget(m_buttons);
}

void ListsPage::setSearching(bool isSearching)
{
    m_family->setVisible(!isSearching);
    m_buttons->setVisible(!isSearching);
    const int margin = isSearching ? 0 : Theme::margin();
    column()->setContentsMargins(Theme::margin(), Theme::isCompact() ? margin : Theme::margin(),
                                 Theme::margin(), margin);
}

void ListsPage::refresh()
{
    m_entries = lists().entries(m_current, m_search->text());
    QVector<TouchRow> rows;
    for (const Lists::Entry &entry : std::as_const(m_entries)) {
        TouchRow row = TouchRow::of(entry.values.first(), detailOf(texts(), m_current, entry));
        row.id = entry.id;
        if (entry.isFactory)
            row.detail += QStringLiteral("   ") + text(Text {"Panel", "factory", "factory"});
        row.isMarked = !entry.isFactory;
        rows += row;
    }
    m_list->setRows(rows);
    m_empty->setVisible(rows.isEmpty());
    refreshButtons();
}

void ListsPage::refreshButtons()
{
    const Lists::Entry *entry = chosenEntry();
    const bool canChange = entry && !entry->isFactory;
    m_rename->setEnabled(canChange);
    m_delete->setEnabled(canChange);
}

const Lists::Entry *ListsPage::chosenEntry() const
{
    const int index = m_list->currentRow();
    return index >= 0 && index < m_entries.size() ? &m_entries.at(index) : nullptr;
}

void ListsPage::edit(bool isNew)
{
    const Lists::Entry entry = isNew || !chosenEntry() ? Lists::Entry() : *chosenEntry();
    QVector<FormSheet::Field> fields;
    for (const Field &field : families[m_current].fields)
        fields += {field.caption, field.kind, entry.values.value(fields.size())};
    new FormSheet(texts(), this,
                  isNew ? Text {"Lists", "add", "Add"} : Text {"Lists", "rename", "Rename"}, fields,
                  [this, isNew, id = entry.id](const QStringList &values) {
                      return take(isNew, id, values);
                  });
}

QString ListsPage::take(bool isNew, int id, const QStringList &values)
{
    if (const Lists::Problem problem = Lists::problemOf(m_current, values))
        return text(problems[problem - 1]);
    if (isNew ? lists().add(m_current, values) : lists().update(m_current, id, values)) {
        session().tones().play(BuzzerClass::Tone_Saved);
        return {};
    }
    session().tones().play(BuzzerClass::Tone_Decline);
    return isNew ? text(Text {"Lists", "exists", "This entry exists already"})
                 : text(operationFailed);
}

void ListsPage::remove()
{
    const Lists::Entry *entry = chosenEntry();
    if (!entry)
        return;
    new ConfirmSheet(
        texts(), this, Text {"Dialogs", "confirmDelete", "Delete this entry?"},
        Text {"Lists", "delete", "Delete"},
        [this, family = m_current, id = entry->id] {
            session().tones().play(lists().remove(family, id) ? BuzzerClass::Tone_Saved
                                                              : BuzzerClass::Tone_Decline);
        },
        entry->values.first() + QStringLiteral("   ") + detailOf(texts(), m_current, *entry));
}

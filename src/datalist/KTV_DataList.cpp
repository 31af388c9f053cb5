#include "datalist/KTV_DataList.h"

#include "datalist/ListFamily_p.h"
#include "internal/DurableFile_p.h"
#include "internal/Guarded_p.h"
#include "internal/NamedDatabase_p.h"
#include "internal/RegularFile_p.h"
#include "internal/log_p.h"
#include "valuebox/NumericalValueBox.h"
#include "valuebox/Temperature_p.h"

#include <QFile>
#include <QHash>
#include <QTextStream>
#include <QVariant>

#include <optional>
#include <utility>

using Internal::guarded;
using Internal::ListFamily;
using Internal::log;
using Internal::RowKind;
using Internal::Statement;

namespace {

/** A list and its elements, deleted together unless release() gives them to the caller. */
template <typename Element> class OwnedList
{
public:
    OwnedList() { m_list->reserve(screenful); }
    ~OwnedList()
    {
        if (m_list)
            qDeleteAll(*m_list);
    }
    Q_DISABLE_COPY_MOVE(OwnedList)

    Element &appendNew()
    {
        auto element = std::make_unique<Element>();
        m_list->append(element.get());
        return *element.release();
    }
    QList<Element *> *release() { return m_list.release(); }

private:
    static constexpr int screenful = 32; ///< reserved at the start; most clients request no more

    std::unique_ptr<QList<Element *>> m_list = std::make_unique<QList<Element *>>();
};

/** Null while temperatures are shown in degrees Celsius, as they are stored. */
const Internal::TemperatureScale *scaleInEffect()
{
    return Internal::temperatureScale(ValueBox::NumericalValueBox::getTempUnit());
}

QString converted(const QString &limit, double (*convert)(double))
{
    using ValueBox::NumericalValueBox;
    if (limit.isEmpty())
        return limit;
    constexpr int decimals = 2;
    // Kept: the text has the sign of the current unit although the number is in degrees Celsius.
    return NumericalValueBox::autoFormat(float(convert(double(NumericalValueBox::getValue(limit)))),
                                         ValueBox::Unit_Temperature, ValueBox::Prefix_None,
                                         decimals, true);
}

QVariantList storedColumns(const ListFamily &family, QVariantList columns)
{
    const auto *scale = family.isTemperature ? scaleInEffect() : nullptr;
    for (int i = 1; scale && i < columns.size(); ++i)
        columns[i] = converted(columns.at(i).toString(), scale->toCelsius);
    return columns;
}

QString shownLimit(const ListFamily &family, const QString &limit)
{
    const auto *scale = family.isTemperature ? scaleInEffect() : nullptr;
    return scale ? converted(limit, scale->fromCelsius) : limit;
}

/** Reads the 64-bit number that the driver delivers, so that no QVariant is converted. */
int idOf(const Statement &row)
{
    return int(row.value(0).toLongLong());
}

void readRow(const ListFamily &, const Statement &row, DataList_Element &element)
{
    element.ID = idOf(row);
    element.ReadOnly = row.value(1).toBool();
    element.Value = row.value(2).toString();
}

void readRow(const ListFamily &, const Statement &row, MaterialList_Element &element)
{
    element.ID = idOf(row);
    element.ReadOnly = row.value(1).toBool();
    element.Name = row.value(2).toString();
    element.Alpha = row.value(3).toReal();
}

void readRow(const ListFamily &family, const Statement &row, LimitList_Element &element)
{
    element.ID = idOf(row);
    element.Name = row.value(1).toString();
    element.HighLimit = shownLimit(family, row.value(2).toString());
    element.LoLimit = shownLimit(family, row.value(3).toString());
}

RowKind wantedRows(bool readOnlyRows, bool userRows)
{
    if (readOnlyRows == userRows)
        return RowKind::All; // kept: clients clear both flags to get everything
    return readOnlyRows ? RowKind::Factory : RowKind::User;
}

/** Result of adding an entry. */
enum class Added
{
    Failed,
    Refused, ///< the text is stored already, or the database does not take this row
    Done
};

} // namespace

class KTV_DataList::Private
{
public:
    Private(const QString &userData, QString languages)
        : directory(userData)
        , path(userData + QStringLiteral("dataList.db"))
        , languagesDirectory(std::move(languages))
    { }

    void setLanguage(const QString &code);
    void fillAll();
    void fill(const ListFamily &family);
    void addFactoryEntries(const ListFamily &family, QFile &file);
    std::optional<int> countFactoryRows(const ListFamily &family); ///< no value on a failure

    Added insert(const ListFamily &family, bool readOnly, const QVariantList &columns);
    Added insertUnlessStored(const ListFamily &family, bool readOnly, const QVariantList &columns);
    Added testDuplicate(const ListFamily &family, const QVariant &name);
    bool add(const ListFamily &family, bool readOnly, const QVariantList &columns);
    bool update(const ListFamily &family, int id, const QVariantList &columns);
    bool remove(const ListFamily &family, int id);
    bool isUserRow(const ListFamily &family, int id);
    template <typename Element>
    QList<Element *> *select(const ListFamily &family, RowKind kind, const QString &filter,
                             int limit);

    /** The SQL statements of a list; each text is made only once. */
    struct SqlTexts
    {
        QString countDuplicates;
        QString insert;
        QString select; ///< the latest query; its arguments follow
        QString selectLanguage;
        RowKind selectKind = RowKind::All;
        bool selectHasFilter = false;
        int selectLimit = 0;
    };
    SqlTexts &sqlTexts(const ListFamily &family);
    const QString &selectText(const ListFamily &family, RowKind kind, bool hasFilter, int limit);

    const QString directory;
    const QString path;
    const QString languagesDirectory;
    QString language;
    QHash<const ListFamily *, SqlTexts> sqlTextsOfLists;
    Internal::NamedDatabase database {QStringLiteral("dataList")};
};

void KTV_DataList::Private::setLanguage(const QString &code)
{
    // A null text would be stored as NULL, which no query of a language ever finds.
    language = code.isNull() ? QLatin1String("") : code;
}

KTV_DataList::Private::SqlTexts &KTV_DataList::Private::sqlTexts(const ListFamily &family)
{
    SqlTexts &texts = sqlTextsOfLists[&family];
    if (texts.insert.isNull()) {
        texts.countDuplicates = family.countDuplicates();
        texts.insert = family.insert();
    }
    return texts;
}

const QString &KTV_DataList::Private::selectText(const ListFamily &family, RowKind kind,
                                                 bool hasFilter, int limit)
{
    SqlTexts &last = sqlTexts(family);
    if (last.select.isNull() || last.selectLanguage != language || last.selectKind != kind
        || last.selectHasFilter != hasFilter || last.selectLimit != limit) {
        last.select = family.select(language, kind, hasFilter, limit);
        last.selectLanguage = language;
        last.selectKind = kind;
        last.selectHasFilter = hasFilter;
        last.selectLimit = limit;
    }
    return last.select;
}

void KTV_DataList::Private::fillAll()
{
    for (const ListFamily *family :
         {&Internal::objectTypes, &Internal::objectNames, &Internal::materials})
        fill(*family);
}

void KTV_DataList::Private::fill(const ListFamily &family)
{
    const std::optional<int> count = countFactoryRows(family);
    if (count.value_or(0) > 0)
        return;
    Internal::RegularFile file(languagesDirectory + language + QLatin1Char('/')
                               + QLatin1String(family.factoryFile));
    if (!file.exists()) {
        log() << "Nie znaleziono lub nie otwarto pliku: " << file.fileName();
        return;
    }
    // If the rows could not be counted, because of a lock for instance, nothing is added: rows that
    // exist would be added a second time.
    if (count && file.open(QIODevice::ReadOnly | QIODevice::Text))
        guarded([&] { addFactoryEntries(family, file); });
}

/**
 * Adds all of the entries or, if the card or memory fails, none: at the next start a single factory
 * row counts as the whole list, so an incomplete list would never be completed. Entries that the
 * database refuses are left out.
 */
void KTV_DataList::Private::addFactoryEntries(const ListFamily &family, QFile &file)
{
    Internal::Transaction transaction(database);
    QTextStream stream(&file);
    // Not until stream.atEnd(): after a read error that never becomes true.
    for (QString line = stream.readLine(); !line.isNull(); line = stream.readLine()) {
        const QVariantList columns = family.factoryEntry(line);
        if (!columns.isEmpty() && insert(family, true, columns) == Added::Failed)
            return;
    }
    if (file.error() == QFileDevice::NoError)
        transaction.commit();
}

std::optional<int> KTV_DataList::Private::countFactoryRows(const ListFamily &family)
{
    if (!database.isOpen())
        return std::nullopt;
    return guarded([&]() -> std::optional<int> {
        Statement query(database, family.countFactoryRows(language), {}, Statement::Often);
        if (!query.isDone() || !query.next())
            return std::nullopt;
        return query.value(0).toInt();
    });
}

Added KTV_DataList::Private::testDuplicate(const ListFamily &family, const QVariant &name)
{
    Statement query(database, sqlTexts(family).countDuplicates, {name}, Statement::Often);
    if (!query.isDone() || !query.next())
        return Added::Failed;
    bool ok = false;
    const qint64 count = query.value(0).toLongLong(&ok);
    if (!ok)
        return Added::Failed;
    return count == 0 ? Added::Done : Added::Refused;
}

Added KTV_DataList::Private::insertUnlessStored(const ListFamily &family, bool readOnly,
                                                const QVariantList &columns)
{
    QVariantList values {language};
    if (family.hasFactoryRows())
        values += readOnly;
    values += storedColumns(family, columns);
    const auto insertRow = [&] {
        const Statement statement(database, sqlTexts(family).insert, values, Statement::Often);
        if (statement.isRefused())
            return Added::Refused;
        return statement.isDone() ? Added::Done : Added::Failed;
    };
    if (!family.isUnique)
        return insertRow();
    Internal::Transaction transaction(database);
    if (const Added test = testDuplicate(family, columns.first()); test != Added::Done)
        return test;
    const Added row = insertRow();
    return row == Added::Done && !transaction.commit() ? Added::Failed : row;
}

Added KTV_DataList::Private::insert(const ListFamily &family, bool readOnly,
                                    const QVariantList &columns)
{
    if (columns.first().toString().isEmpty())
        return family.hasFactoryRows() ? Added::Done : Added::Failed;
    if (!database.isOpen()) {
        database.rollback();
        return Added::Failed;
    }
    return guarded([&] { return insertUnlessStored(family, readOnly, columns); });
}

bool KTV_DataList::Private::add(const ListFamily &family, bool readOnly,
                                const QVariantList &columns)
{
    return insert(family, readOnly, columns) == Added::Done;
}

bool KTV_DataList::Private::update(const ListFamily &family, int id, const QVariantList &columns)
{
    if (columns.first().toString().isEmpty() || !database.isOpen())
        return false;
    return guarded([&] {
        const Statement statement(database, family.update(id), storedColumns(family, columns));
        if (!statement.isDone())
            log() << statement.lastError().text();
        return statement.isDone();
    });
}

bool KTV_DataList::Private::isUserRow(const ListFamily &family, int id)
{
    Statement query(database, family.selectFlag(id));
    return query.isDone() && query.next() && !query.value(0).toBool();
}

bool KTV_DataList::Private::remove(const ListFamily &family, int id)
{
    if (!database.isOpen())
        return false;
    return guarded([&] {
        if (family.hasFactoryRows() && !isUserRow(family, id))
            return false;
        return Statement(database, family.remove(id)).isDone();
    });
}

template <typename Element>
QList<Element *> *KTV_DataList::Private::select(const ListFamily &family, RowKind kind,
                                                const QString &filter, int limit)
{
    if (!database.isOpen())
        return nullptr;
    return guarded([&]() -> QList<Element *> * {
        QVariantList values;
        if (!filter.isEmpty())
            values += QString(QLatin1Char('%') + filter + QLatin1Char('%'));
        Statement query(database, selectText(family, kind, !filter.isEmpty(), limit), values,
                        Statement::Often);
        if (!query.isDone())
            return nullptr;
        OwnedList<Element> list;
        while (query.next())
            readRow(family, query, list.appendNew());
        return query.lastError().isValid() ? nullptr : list.release();
    });
}

KTV_DataList::KTV_DataList(const QString &userDataDirectory, const QString &languagesDirectory,
                           const QString &language, QObject *parent)
    : QObject(parent)
    , d(std::make_unique<Private>(userDataDirectory, languagesDirectory))
{
    d->setLanguage(language);
    Open();
}

KTV_DataList::~KTV_DataList() = default;

bool KTV_DataList::Open()
{
    d->database.close();
    if (Internal::isMissing(d->path))
        return CreateNew();
    if (!d->database.open(d->path)) {
        log() << "!no open database:" << d->database.lastError().text();
        return false;
    }
    SetLang(d->language);
    return true;
}

bool KTV_DataList::CreateNew()
{
    if (Internal::areDatabasesClosed())
        return false; // a deleted file could not be created again
    d->database.close();
    if (QFile::exists(d->path) && !QFile::remove(d->path))
        return false;
    Internal::makeDirectory(d->directory);
    if (!d->database.open(d->path)) {
        log() << "No open :(";
        log() << d->database.handle().isOpenError();
        return false;
    }
    guarded([this] { Internal::createSchema(d->database, Internal::listSchema()); });
    d->fillAll();
    return true;
}

bool KTV_DataList::RestoreFabricalSetting()
{
    return CreateNew();
}

void KTV_DataList::freeDB()
{
    d->database.release();
}

void KTV_DataList::SetLang(const QString &language)
{
    d->setLanguage(language);
    d->fillAll();
}

int KTV_DataList::GetDefaultObiectTypCount()
{
    return d->countFactoryRows(Internal::objectTypes).value_or(0);
}

void KTV_DataList::FillDefaultObiectTyp()
{
    d->fill(Internal::objectTypes);
}

int KTV_DataList::GetDefaultObiectNameCount()
{
    return d->countFactoryRows(Internal::objectNames).value_or(0);
}

void KTV_DataList::FillDefaultObiectName()
{
    d->fill(Internal::objectNames);
}

int KTV_DataList::GetDefaultMaterialsCount()
{
    return d->countFactoryRows(Internal::materials).value_or(0);
}

void KTV_DataList::FillDefaultMaterials()
{
    d->fill(Internal::materials);
}

bool KTV_DataList::AddObiectTyp(const QString &value)
{
    return _AddObiectTyp(false, value);
}

bool KTV_DataList::_AddObiectTyp(bool readOnly, const QString &value)
{
    return d->add(Internal::objectTypes, readOnly, {value});
}

bool KTV_DataList::UpdateObiectTyp(int id, const QString &value)
{
    return d->update(Internal::objectTypes, id, {value});
}

bool KTV_DataList::DeleteObiectTyp(int id)
{
    return d->remove(Internal::objectTypes, id);
}

QList<DataList_Element *> *KTV_DataList::GetObiectTyp(bool readOnlyRows, bool userRows,
                                                      const QString &filter, int limit)
{
    return d->select<DataList_Element>(Internal::objectTypes, wantedRows(readOnlyRows, userRows),
                                       filter, limit);
}

bool KTV_DataList::AddObiectName(const QString &value)
{
    return _AddObiectName(false, value);
}

bool KTV_DataList::_AddObiectName(bool readOnly, const QString &value)
{
    return d->add(Internal::objectNames, readOnly, {value});
}

bool KTV_DataList::UpdateObiectName(int id, const QString &value)
{
    return d->update(Internal::objectNames, id, {value});
}

bool KTV_DataList::DeleteObiectName(int id)
{
    return d->remove(Internal::objectNames, id);
}

QList<DataList_Element *> *KTV_DataList::GetObiectName(bool readOnlyRows, bool userRows,
                                                       const QString &filter, int limit)
{
    return d->select<DataList_Element>(Internal::objectNames, wantedRows(readOnlyRows, userRows),
                                       filter, limit);
}

bool KTV_DataList::AddMaterial(const QString &name, double alpha)
{
    return _AddMaterial(false, name, alpha);
}

bool KTV_DataList::_AddMaterial(bool readOnly, const QString &name, double alpha)
{
    return d->add(Internal::materials, readOnly, {name, alpha});
}

bool KTV_DataList::UpdateMaterial(int id, const QString &name, double alpha)
{
    return d->update(Internal::materials, id, {name, alpha});
}

bool KTV_DataList::DeleteMaterial(int id)
{
    return d->remove(Internal::materials, id);
}

QList<MaterialList_Element *> *KTV_DataList::GetMaterials(bool readOnlyRows, bool userRows,
                                                          const QString &filter, int limit)
{
    return d->select<MaterialList_Element>(Internal::materials, wantedRows(readOnlyRows, userRows),
                                           filter, limit);
}

bool KTV_DataList::AddLimit_R(const QString &name, const QString &high, const QString &low)
{
    return _AddLimit_R(name, high, low);
}

bool KTV_DataList::_AddLimit_R(const QString &name, const QString &high, const QString &low)
{
    return d->add(Internal::resistanceLimits, false, {name, high, low});
}

bool KTV_DataList::UpdateLimit_R(int id, const QString &name, const QString &high,
                                 const QString &low)
{
    return d->update(Internal::resistanceLimits, id, {name, high, low});
}

bool KTV_DataList::DeleteLimit_R(int id)
{
    return d->remove(Internal::resistanceLimits, id);
}

QList<LimitList_Element *> *KTV_DataList::GetLimits_R(const QString &filter, int limit)
{
    return d->select<LimitList_Element>(Internal::resistanceLimits, RowKind::All, filter, limit);
}

bool KTV_DataList::AddLimit_T(const QString &name, const QString &high, const QString &low)
{
    return _AddLimit_T(name, high, low);
}

bool KTV_DataList::_AddLimit_T(const QString &name, const QString &high, const QString &low)
{
    return d->add(Internal::temperatureLimits, false, {name, high, low});
}

bool KTV_DataList::UpdateLimit_T(int id, const QString &name, const QString &high,
                                 const QString &low)
{
    return d->update(Internal::temperatureLimits, id, {name, high, low});
}

bool KTV_DataList::DeleteLimit_T(int id)
{
    return d->remove(Internal::temperatureLimits, id);
}

QList<LimitList_Element *> *KTV_DataList::GetLimits_T(const QString &filter, int limit)
{
    return d->select<LimitList_Element>(Internal::temperatureLimits, RowKind::All, filter, limit);
}

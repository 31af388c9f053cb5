// A pick list with search: the materials whose names contain what the user has typed so far, both
// the user's own and those that came with the device.

#include <datalist/KTV_DataList.h>
#include <datalist/MaterialList_Element.h>
#include <datasource/KTV_DataSource.h>

#include <QCoreApplication>
#include <QTextStream>

#include <memory>

namespace {

/** The first @p limit rows that contain @p typed. */
void show(KTV_DataList &lists, const QString &typed, int limit)
{
    QTextStream out(stdout);
    out << "\"" << typed << "\":\n";
    // The caller deletes the list and its rows.
    const std::unique_ptr<QList<MaterialList_Element *>> rows(
        lists.GetMaterials(true, true, typed, limit));
    for (const MaterialList_Element *row : std::as_const(*rows))
        out << "  " << row->Name << ", " << row->Alpha << " 1/K"
            << (row->ReadOnly ? "" : ", the user's own") << "\n";
    qDeleteAll(*rows);
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    KTV_DataSource meter;
    meter.setMeterSerialName(QStringLiteral("CH20417"));
    KTV_DataList &lists = *meter.get_DataList();

    // False if the card cannot be written.
    if (!lists.AddMaterial(QStringLiteral("Copper, tinned"), 0.00389))
        QTextStream(stderr) << "not stored\n";
    constexpr int all = 100;
    show(lists, QStringLiteral("co"), all);
    show(lists, QStringLiteral("copper, t"), all);
    show(lists, QString(), 2);
}

// The three default lists: whatever they hold, a list has no text twice and none that is empty.

#include "Target.h"

#include <datalist/KTV_DataList.h>

#include <QSet>

namespace {

const QString languages = QStringLiteral("/home/root/Langs/");
const QString userData = QStringLiteral("/media/sdcard/UserData/");

template <typename Element> QString textOf(const Element &element)
{
    return element.Value;
}

QString textOf(const MaterialList_Element &element)
{
    return element.Name;
}

template <typename Element> void expectUnique(QList<Element *> *list)
{
    FUZZ_EXPECT(list);
    QSet<QString> texts;
    for (const Element *element : *list) {
        FUZZ_EXPECT(!textOf(*element).isEmpty());
        FUZZ_EXPECT(!texts.contains(textOf(*element)));
        texts.insert(textOf(*element));
    }
    qDeleteAll(*list);
    delete list;
}

} // namespace

void prepareTarget()
{ }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static constexpr const char *names[] = {"default_obiectTyp.txt", "default_obiectName.txt",
                                            "default_materials.txt"};
    const QList<QByteArray> parts = bytesOf(data, size).split('\f'); // one file each
    for (int i = 0; i < 3; ++i)
        Meter::writeFile(languages + QStringLiteral("ZZ/") + QLatin1String(names[i]),
                         parts.value(i));
    KTV_DataList lists(userData, languages, QStringLiteral("ZZ"));
    FUZZ_EXPECT(lists.RestoreFabricalSetting());
    expectUnique(lists.GetObiectTyp(true, true, QString(), 0));
    expectUnique(lists.GetObiectName(true, true, QString(), 0));
    expectUnique(lists.GetMaterials(true, true, QString(), 0));
    return 0;
}

// The three default lists: whatever they contain, no list gets an empty text, and only materials
// get the same text twice.

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

template <typename Element> void expectTexts(QList<Element *> *list, bool isUnique)
{
    FUZZ_EXPECT(list);
    QSet<QString> texts;
    for (const Element *element : *list) {
        FUZZ_EXPECT(!textOf(*element).isEmpty());
        FUZZ_EXPECT(!isUnique || !texts.contains(textOf(*element)));
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
    const QList<QByteArray> parts = bytesOf(data, size).split('\f'); // one for each file
    for (int i = 0; i < 3; ++i)
        Meter::writeFile(languages + QStringLiteral("ZZ/") + QLatin1String(names[i]),
                         parts.value(i));
    KTV_DataList lists(userData, languages, QStringLiteral("ZZ"));
    FUZZ_EXPECT(lists.RestoreFabricalSetting());
    expectTexts(lists.GetObiectTyp(true, true, QString(), 0), true);
    expectTexts(lists.GetObiectName(true, true, QString(), 0), true);
    expectTexts(lists.GetMaterials(true, true, QString(), 0), false);
    return 0;
}

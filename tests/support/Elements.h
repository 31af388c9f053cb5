#pragma once

#include <QDomDocument>
#include <QMap>

/** The elements of a document, in their order, with attributes in that of their names. */
inline QString elementsOf(const QDomNode &parent)
{
    QString text;
    for (auto element = parent.firstChildElement(); !element.isNull();
         element = element.nextSiblingElement()) {
        QMap<QString, QString> values;
        const QDomNamedNodeMap attributes = element.attributes();
        for (int i = 0; i < attributes.count(); ++i)
            values.insert(attributes.item(i).nodeName(), attributes.item(i).nodeValue());
        text += '<' + element.tagName();
        for (auto value = values.cbegin(); value != values.cend(); ++value)
            text += ' ' + value.key() + '=' + value.value();
        text += '>' + elementsOf(element) + "</>";
    }
    return text;
}

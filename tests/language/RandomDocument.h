#pragma once

#include <QByteArray>

#include <initializer_list>
#include <random>

/** XML documents of every kind of node, mostly well formed, with two levels and more. */
class RandomDocument
{
public:
    explicit RandomDocument(std::mt19937 &random) : m_random(random) { }

    QByteArray text()
    {
        QByteArray document = maybe({"<?xml version='1.0'?>", "<?xml version='1.1'?>",
                                     "<?xml version='1.0' encoding='ISO-8859-2'?>"});
        document += maybe({"<!--c-->", "\n", "<?p i?>"});
        if (below(2) == 0)
            document += documentType();
        document += maybe({"<!--c-->", "\n", "<?p i?>"}) + element(0);
        return document + maybe({"<!--c-->", "\r\n ", "<?p i?>", "x", "<b/>", "&e;"});
    }

private:
    using Choices = std::initializer_list<const char *>;

    int below(int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(m_random); }
    QByteArray one(Choices choices) { return *(choices.begin() + below(int(choices.size()))); }
    QByteArray maybe(Choices choices) { return below(4) == 0 ? one(choices) : QByteArray(); }

    QByteArray name()
    {
        return one({"a", "S", "k", "value", "n:k", "_x", "k-1", "\xc5\xbc", "Lang"});
    }
    QByteArray entity()
    {
        return one({"&lt;", "&amp;", "&quot;", "&e;", "&f;", "&u;", "&x;", "&#65;", "&#x41;",
                    "&#0;", "&#38;", "&#60;", "&e", "&;", "&#xZ;"});
    }
    QByteArray content()
    {
        QByteArray content;
        for (int i = below(4); i >= 0; --i) {
            content += below(5) == 0
                ? entity()
                : one({" ", "\n", "\r\n", "\r", "t", "]]>", ">", "\xc5\xbc", "--", "?>"});
        }
        return content;
    }
    QByteArray attributes()
    {
        QByteArray attributes;
        for (int i = below(3); i > 0; --i) {
            const QByteArray quote = one({"'", "\""});
            attributes += one({" ", "\n", "\t"}) + (below(2) == 0 ? name() : "value");
            attributes += one({"=", " = "}) + quote + content() + quote;
        }
        return attributes;
    }
    QByteArray node(int depth)
    {
        switch (below(9)) {
        case 0:
            return content();
        case 1:
            return "<!--" + one({"c", "", "<k/>", "--", "&e;"}) + "-->";
        case 2:
            return "<?" + name() + one({" i", "", " <k/>", " ?"}) + "?>";
        case 3:
            return "<![CDATA[" + one({"", "c", "<k/>", "]]", "&e;", " \n"}) + "]]>";
        case 4:
            return entity();
        case 5:
            return one({"\n  ", " ", "\r\n"});
        case 6:
            return '<' + name() + attributes() + "/>";
        default:
            return element(depth + 1);
        }
    }
    QByteArray element(int depth)
    {
        const QByteArray tag = name();
        QByteArray element = '<' + tag + attributes() + '>';
        for (int i = depth < 5 ? below(5) : 0; i > 0; --i)
            element += node(depth);
        return element + "</" + (below(60) == 0 ? name() : tag) + '>';
    }
    QByteArray declaration()
    {
        switch (below(5)) {
        case 0:
            return "<!ENTITY e \""
                + one({"x", "", "<k value='1'/>", "u<k value='1'/>v", "&f;", "&#60;k/>", "&u;",
                       "<!--c-->", "<![CDATA[c]]>", "<?p i?>", "<S><k/></S>", "<k>", "&e;"})
                + "\">";
        case 1:
            return "<!ENTITY f '" + one({"y", "<m/>", "&u;", "", "&#38;u;"}) + "'>";
        case 2:
            return one({"<!ENTITY x SYSTEM 'file'>", "<!ENTITY % p '<!ENTITY e \"z\">'>%p;",
                        "<!NOTATION n SYSTEM 's'>"});
        case 3:
            return "<!ATTLIST k value CDATA " + one({"'d'", "#IMPLIED", "#FIXED 'f'"}) + '>';
        default:
            return one({"<!ELEMENT k EMPTY>", "<!ELEMENT k (a|b)*>", "<!--d-->", "<?q r?>", "\n"});
        }
    }
    QByteArray documentType()
    {
        QByteArray declarations;
        for (int i = below(4); i > 0; --i)
            declarations += declaration();
        return "<!DOCTYPE a" + maybe({" SYSTEM 'x'", " PUBLIC 'a' 'b'"}) + " [" + declarations
            + "]>";
    }

    std::mt19937 &m_random;
};

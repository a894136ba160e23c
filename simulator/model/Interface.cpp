// SPDX-License-Identifier: MIT

#include "model/Interface.h"

#include <QtCore/QStringList>
#include <QtCore/QXmlStreamReader>

#include <algorithm>

namespace simulator {

namespace {

QString interfaceElement(const QByteArray &xml)
{
    const QByteArray end = QByteArrayLiteral("</interface>");
    const int from = xml.indexOf("<interface");
    return QString::fromUtf8(xml.mid(from, xml.indexOf(end) + end.size() - from));
}

void readAnnotation(const QXmlStreamAttributes &attributes, Method &method)
{
    const QString name = attributes.value(QStringLiteral("name")).toString();
    const QString value = attributes.value(QStringLiteral("value")).toString();
    if (name == QLatin1String("org.gtk.GDBus.DocString"))
        method.meaning = value;
    else if (name.endsWith(QLatin1String(".Family")))
        method.family = value;
    else if (name.endsWith(QLatin1String(".Operation")))
        method.operation = value.section(QLatin1Char('('), 0, 0);
}

void readArgument(const QXmlStreamAttributes &attributes, Method &method)
{
    const QString type = attributes.value(QStringLiteral("type")).toString();
    if (attributes.value(QStringLiteral("direction")) == QLatin1String("out"))
        method.resultType = type;
    else
        method.arguments.append({attributes.value(QStringLiteral("name")).toString(), type});
}

} // namespace

QString Method::signature() const
{
    QString types;
    for (const Argument &argument : arguments)
        types += argument.type;
    return types;
}

QString Method::describeArguments() const
{
    QStringList list;
    for (const Argument &argument : arguments)
        list += argument.type + QLatin1Char(' ') + argument.name;
    return QLatin1Char('(') + list.join(QStringLiteral(", ")) + QLatin1Char(')');
}

bool Method::hasArgument(const QString &argument) const
{
    return std::any_of(arguments.cbegin(), arguments.cend(),
                       [&](const Argument &a) { return a.name == argument; });
}

Interface::Interface(const QByteArray &xml) : m_xml(interfaceElement(xml))
{
    QXmlStreamReader reader(xml);
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        const QXmlStreamAttributes attributes = reader.attributes();
        const QString name = attributes.value(QStringLiteral("name")).toString();
        if (reader.name() == QLatin1String("interface")) {
            m_name = name;
        } else if (reader.name() == QLatin1String("method")) {
            m_indexByName.insert(name, m_methods.size());
            m_methods.append(Method{name, {}, {}, {}, {}, {}});
        } else if (reader.name() == QLatin1String("annotation")) {
            readAnnotation(attributes, m_methods.last());
        } else if (reader.name() == QLatin1String("arg")) {
            readArgument(attributes, m_methods.last());
        }
    }
    if (reader.hasError())
        qFatal("introspection XML, line %d: %s", int(reader.lineNumber()),
               qPrintable(reader.errorString()));
}

const Method *Interface::method(const QString &name) const
{
    const auto found = m_indexByName.constFind(name);
    return found == m_indexByName.cend() ? nullptr : &m_methods.at(*found);
}

} // namespace simulator

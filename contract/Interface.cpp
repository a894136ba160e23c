// SPDX-License-Identifier: MIT

#include "Interface.h"

#include <QtCore/QFile>
#include <QtCore/QXmlStreamReader>

#include <algorithm>

// Not in a namespace: the macro declares a function of the global one.
static void initializeResource()
{
    Q_INIT_RESOURCE(contract);
}

namespace contract {

namespace {

const QString introspectionFile = QStringLiteral(":/com.tavelornbraille.ConfigurationManager.xml");

const QHash<QString, Role> roles{
    {QStringLiteral("value"), Role::Value},
    {QStringLiteral("flag"), Role::Flag},
    {QStringLiteral("key"), Role::Key},
    {QStringLiteral("setting"), Role::Setting},
    {QStringLiteral("paper"), Role::Paper},
    {QStringLiteral("other"), Role::Other},
    {QStringLiteral("collectionId"), Role::CollectionId},
};

QString interfaceElement(const QByteArray &xml)
{
    const QByteArray end = QByteArrayLiteral("</interface>");
    const int from = xml.indexOf("<interface");
    return QString::fromUtf8(xml.mid(from, xml.indexOf(end) + end.size() - from));
}

/// A method element as it stands in the XML.
struct MethodElement
{
    QString name;
    QVector<Argument> arguments;
    QString resultType;
    QHash<QString, QString> annotations;
};

MethodElement readMethod(QXmlStreamReader &xml)
{
    MethodElement element;
    element.name = xml.attributes().value(QLatin1String("name")).toString();
    while (xml.readNextStartElement()) {
        const QXmlStreamAttributes attributes = xml.attributes();
        const QString name = attributes.value(QLatin1String("name")).toString();
        const QString type = attributes.value(QLatin1String("type")).toString();
        if (xml.name() == QLatin1String("annotation"))
            element.annotations.insert(name, attributes.value(QLatin1String("value")).toString());
        else if (attributes.value(QLatin1String("direction")) == QLatin1String("out"))
            element.resultType = type;
        else
            element.arguments.append({name, type, Role::Other, QString(), QString()});
        xml.skipCurrentElement();
    }
    return element;
}

/// The annotations of the interface's own, by their short names.
class Annotations
{
public:
    Annotations(const MethodElement &element, const QString &interface)
        : m_element(element), m_interface(interface)
    {
    }

    QString value(const QString &name) const
    {
        return m_element.annotations.value(m_interface + QLatin1Char('.') + name);
    }

    QString enumeration(const QString &place) const
    {
        return value(QStringLiteral("Enumeration.") + place);
    }

private:
    const MethodElement &m_element;
    const QString m_interface;
};

QVector<Argument> withRoles(QVector<Argument> arguments, const Annotations &annotations,
                            const QString &method)
{
    const QStringList names =
        annotations.value(QStringLiteral("Roles")).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (int i = 0; i < arguments.size(); ++i) {
        const auto role = roles.constFind(names.value(i));
        if (role == roles.cend() || names.size() != arguments.size())
            qFatal("introspection XML: the roles of %s", qPrintable(method));
        arguments[i].role = *role;
        const QString place = QStringLiteral("In%1").arg(i);
        arguments[i].enumeration = annotations.enumeration(place);
        arguments[i].defaultValue = annotations.value(QStringLiteral("Default.") + place);
    }
    return arguments;
}

Method methodOf(const MethodElement &element, const Annotations &annotations)
{
    Method method;
    method.name = element.name;
    method.operation = annotations.value(QStringLiteral("Operation"));
    method.family = annotations.value(QStringLiteral("Family"));
    method.sentence = element.annotations.value(QStringLiteral("org.gtk.GDBus.DocString"));
    method.meaning = annotations.value(QStringLiteral("Meaning"));
    method.arguments = withRoles(element.arguments, annotations, element.name);
    method.resultType = element.resultType;
    method.resultEnumeration = annotations.enumeration(QStringLiteral("Out0"));
    method.setting = annotations.value(QStringLiteral("Writes"));
    method.writes = !method.setting.isEmpty();
    if (!method.writes)
        method.setting = annotations.value(QStringLiteral("Reads"));
    method.isSecret = annotations.value(QStringLiteral("Secret")) == QLatin1String("true");
    method.isIdentity = annotations.value(QStringLiteral("Identity")) == QLatin1String("true");
    return method;
}

QByteArray introspectionXml()
{
    initializeResource();
    QFile file(introspectionFile);
    if (!file.open(QFile::ReadOnly))
        qFatal("%s: %s", qPrintable(introspectionFile), qPrintable(file.errorString()));
    return file.readAll();
}

template<typename Item>
const Item *find(const QVector<Item> &items, const QHash<QString, int> &indexes,
                 const QString &name)
{
    const auto found = indexes.constFind(name);
    return found == indexes.cend() ? nullptr : &items.at(*found);
}

} // namespace

QString Method::operationName() const
{
    return operation.section(QLatin1Char('('), 0, 0);
}

QString Method::signature() const
{
    QString types;
    for (const Argument &argument : arguments)
        types += argument.type;
    return types;
}

int Method::indexOf(Role role) const
{
    const auto *const found = std::find_if(arguments.cbegin(), arguments.cend(),
                                           [&](const Argument &a) { return a.role == role; });
    return found == arguments.cend() ? -1 : int(found - arguments.cbegin());
}

QString Setting::type() const
{
    return writer ? writer->arguments.at(writer->indexOf(Role::Value)).type : reader->resultType;
}

QString Setting::enumeration() const
{
    return writer ? writer->arguments.at(writer->indexOf(Role::Value)).enumeration
                  : reader->resultEnumeration;
}

const Interface &Interface::configurationManager()
{
    static const Interface interface(introspectionXml());
    return interface;
}

Interface::Interface(const QByteArray &xml) : m_xml(interfaceElement(xml))
{
    QXmlStreamReader reader(xml);
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (reader.name() == QLatin1String("interface"))
            m_name = reader.attributes().value(QLatin1String("name")).toString();
        if (reader.name() != QLatin1String("method"))
            continue;
        const MethodElement element = readMethod(reader);
        m_methodIndexes.insert(element.name, m_methods.size());
        m_methods.append(methodOf(element, Annotations(element, m_name)));
    }
    if (reader.hasError())
        qFatal("introspection XML, line %d: %s", int(reader.lineNumber()),
               qPrintable(reader.errorString()));
    collectSettings();
}

void Interface::collectSettings()
{
    for (const Method &method : qAsConst(m_methods)) {
        if (method.setting.isEmpty())
            continue;
        if (!m_settingIndexes.contains(method.setting)) {
            m_settingIndexes.insert(method.setting, m_settings.size());
            m_settings.append({method.setting, nullptr, nullptr});
        }
        Setting &setting = m_settings[m_settingIndexes.value(method.setting)];
        (method.writes ? setting.writer : setting.reader) = &method;
    }
}

const Method *Interface::method(const QString &name) const
{
    return find(m_methods, m_methodIndexes, name);
}

const Setting *Interface::setting(const QString &name) const
{
    return find(m_settings, m_settingIndexes, name);
}

} // namespace contract

// SPDX-License-Identifier: MIT

#include "library/Catalogue.h"

#include <libconfigurationmanager/ConfigurationManager.h>

#include <QtCore/QFile>
#include <QtCore/QHash>
#include <QtCore/QMetaMethod>
#include <QtCore/QRegularExpression>
#include <QtCore/QXmlStreamReader>

#include <algorithm>

// Outside of any namespace, as Q_INIT_RESOURCE needs it: a static library's resources are not in
// the program by themselves.
static void initResource()
{
    Q_INIT_RESOURCE(interface);
}

namespace tool {

using libconfigurationmanager::detail::ConfigurationManager;

namespace {

const QString introspectionFile = QStringLiteral(":/com.tavelornbraille.ConfigurationManager.xml");
const QString interfaceName = QStringLiteral("com.tavelornbraille.ConfigurationManager");

ValueType valueType(const QByteArray &name)
{
    const QString text = QString::fromLatin1(name);
    const QString scope = QStringLiteral("lcm::");
    return {text, text.startsWith(scope) ? Enumeration(text.mid(scope.size())) : Enumeration()};
}

Operation operationOf(const QMetaMethod &method)
{
    Operation operation;
    operation.name = QString::fromLatin1(method.name());
    operation.result = valueType(method.typeName());
    for (int i = 0; i < method.parameterCount(); ++i) {
        operation.parameters.append({QString::fromLatin1(method.parameterNames()[i]),
                                     valueType(method.parameterTypes()[i])});
    }
    return operation;
}

/// The enumeration in whose numbers a plain int is given, where the meaning names one.
Enumeration mentionedEnumeration(const QString &meaning)
{
    static const QRegularExpression mention(QStringLiteral("\\blcm::(\\w+)"));
    return Enumeration(mention.match(meaning).captured(1));
}

void setEnumerationOfPlainInt(ValueType *type, const Enumeration &enumeration)
{
    if (type->name == QLatin1String("int"))
        type->enumeration = enumeration;
}

bool readsSetting(const Operation &operation)
{
    return operation.isGetter() && operation.requiredParameters == 0 && operation.hasResult();
}

bool writesSetting(const Operation &operation)
{
    return operation.isSetter() && operation.requiredParameters <= 1 &&
           !operation.parameters.isEmpty();
}

} // namespace

bool Setting::takesFlag() const
{
    return setter && setter->parameters.size() == 2 &&
           setter->parameters[1].name == QLatin1String("flag");
}

Catalogue::Catalogue()
{
    readMetaObject();
    readIntrospection();
    pairSettings();
}

void Catalogue::readMetaObject()
{
    const QMetaObject &library = ConfigurationManager::staticMetaObject;
    for (int i = library.methodOffset(); i < library.methodCount(); ++i) {
        const QMetaMethod method = library.method(i);
        if (method.methodType() != QMetaMethod::Slot)
            continue;
        // A variant without the last parameters follows its method at once.
        if (!(method.attributes() & QMetaMethod::Cloned))
            m_operations.append(operationOf(method));
        m_operations.last().forms.append(method);
        m_operations.last().requiredParameters = method.parameterCount();
    }
}

void Catalogue::readIntrospection()
{
    QHash<QByteArray, Operation *> bySignature;
    for (Operation &operation : m_operations)
        bySignature.insert(operation.forms.first().methodSignature(), &operation);

    initResource();
    QFile file(introspectionFile);
    if (!file.open(QFile::ReadOnly))
        qFatal("%s: %s", qPrintable(introspectionFile), qPrintable(file.errorString()));
    QXmlStreamReader xml(&file);
    QString remoteMethod;
    QHash<QString, QString> annotations;
    while (!xml.atEnd()) {
        const auto token = xml.readNext();
        const QString name = xml.attributes().value(QLatin1String("name")).toString();
        if (token == QXmlStreamReader::StartElement && xml.name() == QLatin1String("method")) {
            remoteMethod = name;
            annotations.clear();
        } else if (token == QXmlStreamReader::StartElement &&
                   xml.name() == QLatin1String("annotation")) {
            annotations.insert(name, xml.attributes().value(QLatin1String("value")).toString());
        } else if (token == QXmlStreamReader::EndElement && xml.name() == QLatin1String("method")) {
            const QString signature =
                annotations.value(interfaceName + QStringLiteral(".Operation"));
            Operation *operation = bySignature.value(
                QMetaObject::normalizedSignature(signature.toLatin1().constData()));
            if (!operation)
                continue;
            operation->remoteMethod = remoteMethod;
            operation->family = annotations.value(interfaceName + QStringLiteral(".Family"));
            operation->meaning = annotations.value(QStringLiteral("org.gtk.GDBus.DocString"));
            const Enumeration enumeration = mentionedEnumeration(operation->meaning);
            setEnumerationOfPlainInt(&operation->result, enumeration);
            for (Parameter &parameter : operation->parameters)
                setEnumerationOfPlainInt(&parameter.type, enumeration);
        }
    }
}

void Catalogue::pairSettings()
{
    QHash<QString, int> indexes;
    const auto settingOf = [&](const QString &name) -> Setting & {
        if (!indexes.contains(name)) {
            indexes.insert(name, m_settings.size());
            Setting setting;
            setting.name = name;
            m_settings.append(setting);
        }
        return m_settings[indexes.value(name)];
    };
    for (const Operation &operation : qAsConst(m_operations)) {
        if (readsSetting(operation))
            settingOf(operation.settingName()).getter = &operation;
        if (writesSetting(operation))
            settingOf(operation.settingName()).setter = &operation;
    }
}

QVector<const Operation *> Catalogue::operationsNamed(const QString &name) const
{
    const QByteArray signature = QMetaObject::normalizedSignature(name.toLatin1().constData());
    QVector<const Operation *> found;
    for (const Operation &operation : m_operations) {
        const bool hasSignature = std::any_of(
            operation.forms.begin(), operation.forms.end(),
            [&](const QMetaMethod &form) { return form.methodSignature() == signature; });
        if (operation.name == name || hasSignature)
            found.append(&operation);
    }
    return found;
}

QStringList Catalogue::operationNames() const
{
    QStringList names;
    for (const Operation &operation : m_operations)
        names.append(operation.name);
    names.removeDuplicates();
    return names;
}

const Setting *Catalogue::setting(const QString &name) const
{
    for (const Setting &setting : m_settings) {
        if (setting.name == name)
            return &setting;
    }
    return nullptr;
}

QStringList Catalogue::settingNames() const
{
    QStringList names;
    for (const Setting &setting : m_settings)
        names.append(setting.name);
    return names;
}

QStringList Catalogue::readableSettings() const
{
    QStringList names;
    for (const Setting &setting : m_settings) {
        if (setting.getter)
            names.append(setting.name);
    }
    return names;
}

QStringList Catalogue::writableSettings() const
{
    QStringList names;
    for (const Setting &setting : m_settings) {
        if (setting.setter)
            names.append(setting.name);
    }
    return names;
}

} // namespace tool

// SPDX-License-Identifier: MIT

#include "library/Catalogue.h"

#include <contract/Interface.h>
#include <libconfigurationmanager/ConfigurationManager.h>
#include <libconfigurationmanager/lcm.h>

#include <QtCore/QHash>
#include <QtCore/QMetaMethod>

namespace tool {

using libconfigurationmanager::detail::ConfigurationManager;

namespace {

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

/// The type of a value that the library has as a plain int, if the contract knows what it counts.
void setEnumeration(ValueType *type, const QString &enumeration)
{
    if (!type->enumeration.isValid())
        type->enumeration = Enumeration(enumeration);
}

void describe(Operation *operation, const contract::Method &method)
{
    operation->remoteMethod = method.name;
    operation->family = method.family;
    operation->meaning = method.sentence;
    operation->setting = method.setting;
    operation->writes = method.writes;
    operation->isSecret = method.isSecret;
    operation->isQuery = !method.takesValue() && !method.meaning.isEmpty();
    operation->collectionIdAt = method.indexOf(contract::Role::CollectionId);
    setEnumeration(&operation->result, method.resultEnumeration);
    // The library's parameters are sent in their order.
    auto *parameter = operation->parameters.begin();
    for (const contract::Argument &argument : method.arguments) {
        if (argument.role == contract::Role::CollectionId)
            continue;
        parameter->role = argument.role;
        setEnumeration(&parameter->type, argument.enumeration);
        if (!argument.defaultValue.isEmpty()) {
            parameter->defaultValue = argument.defaultValue;
            parameter->defaultValue.convert(parameter->type.metaType());
        }
        ++parameter;
    }
}

bool readsSetting(const Operation &operation)
{
    return !operation.setting.isEmpty() && !operation.writes && operation.requiredParameters == 0;
}

bool writesSetting(const Operation &operation)
{
    return operation.writes && operation.requiredParameters <= 1 &&
           operation.parameterOf(contract::Role::Value);
}

} // namespace

const ValueType &Setting::valueType() const
{
    return setter ? setter->parameterOf(contract::Role::Value)->type : getter->result;
}

bool Setting::takesFlag() const
{
    return setter && setter->parameterOf(contract::Role::Flag);
}

Catalogue::Catalogue()
{
    // The meta-object knows the list by this name, the libraries register it by another.
    qRegisterMetaType<ConfigurationList>("ConfigurationList");
    readMetaObject();
    readContract();
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
        m_operations.last().signatures.append(method.methodSignature());
        m_operations.last().requiredParameters = method.parameterCount();
    }
}

void Catalogue::readContract()
{
    QHash<QByteArray, Operation *> bySignature;
    for (Operation &operation : m_operations)
        bySignature.insert(operation.signatures.first(), &operation);
    for (const contract::Method &method : contract::Interface::configurationManager().methods()) {
        const QByteArray signature = method.operation.toLatin1();
        Operation *operation =
            bySignature.value(QMetaObject::normalizedSignature(signature.constData()));
        if (operation)
            describe(operation, method);
    }
}

void Catalogue::pairSettings()
{
    const auto settingOf = [&](const QString &name) -> Setting & {
        if (!m_settingIndexes.contains(name)) {
            m_settingIndexes.insert(name, m_settings.size());
            Setting setting;
            setting.name = name;
            const contract::Setting *known =
                contract::Interface::configurationManager().setting(name);
            if (known) {
                setting.meaning = known->primary().meaning;
                setting.isSecret = known->isSecret();
                setting.isIdentity = known->isIdentity();
            }
            m_settings.append(setting);
        }
        return m_settings[m_settingIndexes.value(name)];
    };
    for (const Operation &operation : qAsConst(m_operations)) {
        if (readsSetting(operation))
            settingOf(operation.setting).getter = &operation;
        if (writesSetting(operation))
            settingOf(operation.setting).setter = &operation;
    }
}

QVector<const Operation *> Catalogue::operationsNamed(const QString &name) const
{
    const QByteArray signature = QMetaObject::normalizedSignature(name.toLatin1().constData());
    QVector<const Operation *> found;
    for (const Operation &operation : m_operations) {
        if (operation.name == name || operation.signatures.contains(signature))
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
    const auto index = m_settingIndexes.find(name);
    return index == m_settingIndexes.end() ? nullptr : &m_settings[*index];
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

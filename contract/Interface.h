// SPDX-License-Identifier: MIT

#ifndef CONTRACT_INTERFACE_H
#define CONTRACT_INTERFACE_H

#include <QtCore/QByteArray>
#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtCore/QVector>

namespace contract {

/// What an argument of a remote call is for.
enum class Role {
    Value,        ///< what is written to the setting
    Flag,         ///< the service's own flag
    Key,          ///< which value of a setting with several is meant
    Setting,      ///< the name of a setting
    Paper,        ///< the name of a paper format
    Other,        ///< anything else
    CollectionId, ///< of the library, not of its caller
};

struct Argument
{
    QString name; ///< for people: no program may depend on it
    QString type; ///< D-Bus signature
    Role role = Role::Other;
    QString enumeration;  ///< X of the lcm::X whose values the int takes; mostly empty
    QString defaultValue; ///< what is sent when the library's caller gives none; mostly empty
};

/// A remote method with what the table of operations says of it.
struct Method
{
    QString name;
    QString operation; ///< the library's, with the types of its parameters: "getCounter(int)"
    QString family;
    QString sentence; ///< what it does, for people
    QString meaning;  ///< what it sets or returns, as a phrase; empty for a command
    QVector<Argument> arguments;
    QString resultType; ///< D-Bus signature; empty when there is no result
    QString resultEnumeration;
    QString setting; ///< the one that it reads or writes; mostly one, sometimes none
    bool writes = false;
    bool isSecret = false;   ///< the value of the setting is never shown
    bool isIdentity = false; ///< the setting tells an embosser from others, or what it has done

    /// The name of the library's operation without its parameters.
    QString operationName() const;

    /// The D-Bus signature of all arguments.
    QString signature() const;

    /// Where the first argument of that role stands; -1 without one.
    int indexOf(Role role) const;
    bool has(Role role) const { return indexOf(role) >= 0; }

    /// Whether it writes a setting, also one that an argument names.
    bool takesValue() const { return writes || has(Role::Value); }
};

/// What a method reads or writes, under one name or, when keyed, under one name and a key.
struct Setting
{
    QString name;
    const Method *reader = nullptr; ///< either may be missing
    const Method *writer = nullptr;

    /// The method that tells of the setting: the one that writes it, where there is one.
    const Method &primary() const { return writer ? *writer : *reader; }

    /// The D-Bus type of the value.
    QString type() const;

    /// X of the lcm::X whose values its int takes; mostly empty.
    QString enumeration() const;

    bool isSecret() const { return primary().isSecret; }
    bool isIdentity() const { return primary().isIdentity; }
    bool isKeyed() const { return primary().has(Role::Key); }

    /// Whether each collection has its value. What is read without a collection id has one value,
    /// even if it is written with one.
    bool isPerCollection() const { return (reader ? *reader : *writer).has(Role::CollectionId); }
};

/// The D-Bus interface of the configuration service, as its introspection XML describes it.
class Interface
{
public:
    /// The one that is part of the program.
    static const Interface &configurationManager();

    /// Stops the process when the XML is not what the generator writes.
    explicit Interface(const QByteArray &xml);
    Q_DISABLE_COPY(Interface)

    QString name() const { return m_name; }

    /// The interface element of the XML.
    QString xml() const { return m_xml; }

    const QVector<Method> &methods() const { return m_methods; }
    const QVector<Setting> &settings() const { return m_settings; }

    /// Null when there is none of that name.
    const Method *method(const QString &name) const;
    const Setting *setting(const QString &name) const;

private:
    void collectSettings();

    QString m_name;
    QString m_xml;
    QVector<Method> m_methods;
    QVector<Setting> m_settings;
    QHash<QString, int> m_methodIndexes;
    QHash<QString, int> m_settingIndexes;
};

} // namespace contract

#endif

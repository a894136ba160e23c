// SPDX-License-Identifier: MIT

#ifndef LIBCONFIGURATIONMANAGER_QMLTYPES_H
#define LIBCONFIGURATIONMANAGER_QMLTYPES_H

#include <libconfigurationmanager/lcm.h>

#include <QtCore/QMetaEnum>
#include <QtCore/QMetaType>
#include <QtCore/QSequentialIterable>
#include <QtQml/QJSEngine>
#include <QtQml/QJSValue>
#include <QtQml/qqml.h>

// For programs that use Qt QML, and link with it: the library itself does not.

namespace libconfigurationmanager {

namespace detail {

// An object of objects: the enumerations with their keys. Qt's own registration of a meta-object
// would warn of each key that two of them have.
inline QJSValue enumerations(QJSEngine &engine)
{
    const QMetaObject &metaObject = lcm::EnumDetail::staticMetaObject;
    QJSValue all = engine.newObject();
    for (int i = metaObject.enumeratorOffset(); i < metaObject.enumeratorCount(); ++i) {
        const QMetaEnum enumeration = metaObject.enumerator(i);
        QJSValue keys = engine.newObject();
        for (int key = 0; key < enumeration.keyCount(); ++key)
            keys.setProperty(QString::fromLatin1(enumeration.key(key)), enumeration.value(key));
        all.setProperty(QString::fromLatin1(enumeration.name()), keys);
    }
    return all;
}

} // namespace detail

/// Makes the operations of a ConfigurationManager callable from QML and from QJSEngine, whatever
/// types they return. To be called once, before the first script.
///
/// Enumerations are numbers in a script. In QML they also have names after
/// `import LibConfigurationManager 1.0`, for example `Lcm.EmbosserType.Marren`. A lcm::PropList is
/// an array of objects. A ConfigurationList is an array of sections that a script can hand on, but
/// not look into.
inline void registerQmlTypes()
{
    // Under the names by which the operations call them; Qt knows them as members of EnumDetail.
    qRegisterMetaType<lcm::BrailleDimension>("lcm::BrailleDimension");
    qRegisterMetaType<lcm::BrailleType>("lcm::BrailleType");
    qRegisterMetaType<lcm::Duplex>("lcm::Duplex");
    qRegisterMetaType<lcm::EmbosserType>("lcm::EmbosserType");
    qRegisterMetaType<lcm::FeedType>("lcm::FeedType");
    qRegisterMetaType<lcm::HeadType>("lcm::HeadType");
    qRegisterMetaType<lcm::ModelMask>("lcm::ModelMask");
    qRegisterMetaType<lcm::Orientation>("lcm::Orientation");
    qRegisterMetaType<lcm::PrintSpeed>("lcm::PrintSpeed");
    qRegisterMetaType<lcm::RowValueList>("lcm::RowValueList");
    qRegisterMetaType<lcm::ValidateCommand>("lcm::ValidateCommand");
    qRegisterMetaType<ConfigurationList>("ConfigurationList");
    qmlRegisterSingletonType(
        "LibConfigurationManager", 1, 0, "Lcm",
        [](QQmlEngine *, QJSEngine *engine) { return detail::enumerations(*engine); });

    using Iterable = QtMetaTypePrivate::QSequentialIterableImpl;
    if (!QMetaType::hasRegisteredConverterFunction<lcm::PropList, Iterable>())
        QMetaType::registerConverter<lcm::PropList, Iterable>(
            [](const lcm::PropList &list) { return Iterable(&list.maps); });
}

} // namespace libconfigurationmanager

#endif

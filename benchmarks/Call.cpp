// SPDX-License-Identifier: MIT

#include "Call.h"

#include <GeneratedProxy.h>

#include <QtCore/QStringList>
#include <QtDBus/QDBusMetaType>
#include <QtDBus/QDBusReply>

#include <algorithm>
#include <iterator>
#include <type_traits>
#include <utility>

using libconfigurationmanager::detail::ConfigurationManager;

namespace {

const QString collectionId = QStringLiteral("masterCollectionKey");

Argument withoutQt(const QVariant &argument)
{
    switch (static_cast<QMetaType::Type>(argument.userType())) {
    case QMetaType::Int:
        return argument.toInt();
    case QMetaType::Bool:
        return argument.toBool();
    case QMetaType::Double:
        return argument.toDouble();
    case QMetaType::QString:
        return argument.toString().toStdString();
    default:
        break;
    }
    const QVariantMap map = argument.toMap();
    std::map<std::string, int32_t> numbers;
    std::map<std::string, std::vector<std::string>> lists;
    for (auto entry = map.begin(); entry != map.end(); ++entry) {
        const std::string key = entry.key().toStdString();
        if (entry->userType() == QMetaType::Int)
            numbers[key] = entry->toInt();
        else
            for (const QString &text : entry->toStringList())
                lists[key].push_back(text.toStdString());
    }
    if (lists.empty())
        return numbers;
    return lists;
}

// The answers of the service are no defaults.
template<typename Result>
bool isAnswer(const Result &result)
{
    return result != Result();
}

bool isAnswer(const lcm::PropList &result)
{
    return !result.isEmpty();
}

template<typename Operation, typename GeneratedMethod>
Call makeCall(const char *method, const QVariantList &arguments, const QVariantList &parameters,
              Operation operation, GeneratedMethod generatedMethod)
{
    using Result = std::invoke_result_t<Operation, ConfigurationManager &>;
    constexpr bool isVoid = std::is_void_v<Result>;
    Call call;
    call.name = method;
    call.method = QString::fromLatin1(method);
    call.qtArguments = arguments;
    std::transform(arguments.begin(), arguments.end(), std::back_inserter(call.arguments),
                   withoutQt);
    call.parameters = parameters;
    call.resultType = qMetaTypeId<Result>();
    call.resultTypeName = std::is_same_v<Result, ConfigurationList>
                              ? "ConfigurationList" // which the meta-type system does not know
                              : QMetaType::typeName(call.resultType);
    if constexpr (!isVoid)
        call.resultSignature = QDBusMetaType::typeToSignature(call.resultType);
    call.operation = [operation](ConfigurationManager &manager) {
        if constexpr (isVoid) {
            operation(manager);
            return true;
        } else {
            return isAnswer(operation(manager));
        }
    };
    call.generatedMethod = [generatedMethod](GeneratedProxy &proxy) {
        auto reply = generatedMethod(proxy);
        reply.waitForFinished();
        if constexpr (isVoid)
            return !reply.isError();
        else
            return isAnswer(reply.value());
    };
    call.readReply = [](const QDBusMessage &reply) {
        if constexpr (isVoid)
            return reply.type() == QDBusMessage::ReplyMessage;
        else
            return isAnswer(QDBusReply<Result>(reply).value());
    };
    return call;
}

Call sized(int size, Call call)
{
    call.name += ':' + std::to_string(size);
    call.entries = size;
    return call;
}

/// Results and arguments of so many entries.
void addSizedCalls(std::vector<Call> &calls, int size)
{
    const QString text = QString::number(size);
    calls.push_back(sized(
        size, makeCall(
                  "getTableMetadata", {text, QString()}, {text, QString()},
                  [text](ConfigurationManager &m) { return m.getTableMetadata(text, QString()); },
                  [text](GeneratedProxy &p) { return p.getTableMetadata(text, QString()); })));
    calls.push_back(
        sized(size, makeCall(
                        "getValueList", {size}, {size},
                        [size](ConfigurationManager &m) { return m.getValueList(size); },
                        [size](GeneratedProxy &p) { return p.getValueList(size); })));

    QVariantMap map;
    QStringList list;
    for (int i = 0; i < size; ++i) {
        map.insert(QStringLiteral("Setting%1").arg(i), i);
        list.append(QStringLiteral("choice"));
    }
    const QVariantMap mapOfList{{QStringLiteral("Choices"), list}};
    for (const auto &[kind, argument] : {std::pair("map", map), std::pair("list", mapOfList)}) {
        Call call = makeCall(
            "processSequence", {argument}, {argument},
            [argument = argument](ConfigurationManager &m) { return m.processSequence(argument); },
            [argument = argument](GeneratedProxy &p) { return p.processSequence(argument); });
        call.name += ':';
        call.name += kind;
        calls.push_back(sized(size, call));
    }
}

} // namespace

std::vector<Call> makeCalls()
{
    const QString &id = collectionId;
    const QString name = QStringLiteral("Baudrate");
    std::vector<Call> calls{
        makeCall(
            "isArvo", {}, {}, [](ConfigurationManager &m) { return m.isArvo(); },
            [](GeneratedProxy &p) { return p.isArvo(); }),
        makeCall(
            "getBaudrate", {id}, {}, [](ConfigurationManager &m) { return m.getBaudrate(); },
            [id](GeneratedProxy &p) { return p.getBaudrate(id); }),
        makeCall(
            "setVersionInt", {7, id}, {7}, [](ConfigurationManager &m) { m.setVersionInt(7); },
            [id](GeneratedProxy &p) { return p.setVersionInt(7, id); }),
        makeCall(
            "setOddLowPulseTime", {540, id, true}, {540, true},
            [](ConfigurationManager &m) { m.setOddLowPulseTime(540, true); },
            [id](GeneratedProxy &p) { return p.setOddLowPulseTime(540, id, true); }),
        makeCall(
            "getProposition", {name}, {name},
            [name](ConfigurationManager &m) { return m.getProposition(name); },
            [name](GeneratedProxy &p) { return p.getProposition(name); }),
        makeCall(
            "setIntValue", {name, 9600, id, true}, {name, 9600, true},
            [name](ConfigurationManager &m) { return m.setIntValue(name, 9600, true); },
            [name, id](GeneratedProxy &p) { return p.setIntValue(name, 9600, id, true); }),
        makeCall(
            "setCounter", {5, 1, id}, {5, 1}, [](ConfigurationManager &m) { m.setCounter(5, 1); },
            [id](GeneratedProxy &p) { return p.setCounter(5, 1, id); }),
        makeCall(
            "getLineToLine", {2.5, 6, 2.5, 5.0, name, name, name, name},
            {2.5, 6, 2.5, 5.0, name, name, name, name},
            [name](ConfigurationManager &m) {
                return m.getLineToLine(2.5, 6, 2.5, 5.0, name, name, name, name);
            },
            [name](GeneratedProxy &p) {
                return p.getLineToLine(2.5, 6, 2.5, 5.0, name, name, name, name);
            }),
        makeCall(
            "currentConfigurationCmd", {}, {},
            [](ConfigurationManager &m) { return m.currentConfigurationCmd(); },
            [](GeneratedProxy &p) { return p.currentConfigurationCmd(); }),
    };
    for (const int size : {10, 1000, 100000})
        addSizedCalls(calls, size);
    return calls;
}

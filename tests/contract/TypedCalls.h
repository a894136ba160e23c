// SPDX-License-Identifier: MIT

#ifndef TESTS_CONTRACT_TYPEDCALLS_H
#define TESTS_CONTRACT_TYPEDCALLS_H

#include "ConfigurationManager_p.h"
#include "SampleValues.h"

#include <libconfigurationmanager/ConfigurationManager.h>

#include <QtCore/QString>
#include <QtCore/QVariant>
#include <QtCore/QVector>

using Facade = libconfigurationmanager::detail::ConfigurationManager;
using Private = libconfigurationmanager::detail::ConfigurationManagerPrivate;

/// What the compiler knows of an operation and no meta-object tells.
struct Declaration
{
    const char *signature;
    const char *const *parameterTypes;
    bool constInFacade;
    bool constInPrivate;
};

template<typename T>
inline constexpr const char *typeText = nullptr;
template<>
inline constexpr const char *typeText<bool> = "bool ";
template<>
inline constexpr const char *typeText<int> = "int ";
template<>
inline constexpr const char *typeText<double> = "double ";
template<>
inline constexpr const char *typeText<QString> = "QString ";
template<>
inline constexpr const char *typeText<const QString &> = "const QString &";
template<>
inline constexpr const char *typeText<QVariantMap> = "QVariantMap ";

template<typename Function>
struct FunctionType;
template<typename Result, typename... Parameters>
struct FunctionType<Result(Parameters...)>
{
    static constexpr bool isConst = false;
    static constexpr const char *parameters[] = {typeText<Parameters>..., nullptr};
};
template<typename Result, typename... Parameters>
struct FunctionType<Result(Parameters...) const> : FunctionType<Result(Parameters...)>
{
    static constexpr bool isConst = true;
};

/// Compiles only when the members have exactly these types.
template<typename InFacade, typename InPrivate>
constexpr Declaration declared(const char *signature, InFacade Facade::*, InPrivate Private::*)
{
    return {signature, FunctionType<InFacade>::parameters, FunctionType<InFacade>::isConst,
            FunctionType<InPrivate>::isConst};
}

/// The arguments of a typed call, by their position.
class In
{
public:
    explicit In(int round) : m_round(round) {}

    bool flag(int position) const { return sample("bool", position).toBool(); }
    int number(int position) const { return sample("int", position).toInt(); }
    double real(int position) const { return sample("double", position).toDouble(); }
    QString text(int position) const { return sample("QString", position).toString(); }
    QVariantMap map(int position) const { return sample("QVariantMap", position).toMap(); }

private:
    QVariant sample(const char *type, int position) const
    {
        return sampleValue(type, m_round + position);
    }

    int m_round;
};

/// An operation, or its form with a default argument, called as an application's source does.
struct TypedCall
{
    const char *signature;
    QVariant (*call)(Facade &f, In in);
};

QVector<Declaration> declarations();
QVector<TypedCall> typedCalls();

#endif

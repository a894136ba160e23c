// SPDX-License-Identifier: MIT

#ifndef BENCHMARKS_CALL_H
#define BENCHMARKS_CALL_H

#include <libconfigurationmanager/ConfigurationManager.h>

#include <QtCore/QString>
#include <QtCore/QVariant>
#include <QtDBus/QDBusMessage>

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <variant>
#include <vector>

class GeneratedProxy;

/// An argument as a program without Qt has it.
using Argument = std::variant<int32_t, bool, double, std::string, std::map<std::string, int32_t>,
                              std::map<std::string, std::vector<std::string>>>;

/// One and the same remote call, for every caller to make in its own way.
struct Call
{
    std::string name;
    int entries = 0; // of the map or list that it sends or gets

    QString method;
    QVariantList qtArguments;
    std::vector<Argument> arguments;
    std::string resultSignature;

    /// The operation of the library, as the meta-object knows it.
    QVariantList parameters;
    const char *resultTypeName;
    int resultType;

    // Each makes the call or reads its reply, and returns whether there was an answer.
    std::function<bool(libconfigurationmanager::detail::ConfigurationManager &)> operation;
    std::function<bool(GeneratedProxy &)> generatedMethod;
    std::function<bool(const QDBusMessage &)> readReply;
};

/// A call of each class of arguments and results, and with maps and lists of several sizes.
///
/// There must be a ConfigurationManager already: it makes the compound types known.
std::vector<Call> makeCalls();

#endif

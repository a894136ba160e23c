// SPDX-License-Identifier: MIT

#include "RandomReply.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>
#include <utility>

void check(int result, const char *what)
{
    if (result >= 0)
        return;
    std::fprintf(stderr, "%s: %s\n", what, std::strerror(-result));
    std::exit(EXIT_FAILURE);
}

namespace {

/// How long the single complete type is with which the signature begins.
size_t typeLength(const char *signature)
{
    if (*signature == 'a')
        return 1 + typeLength(signature + 1);
    if (*signature != '(' && *signature != '{')
        return 1;
    size_t length = 1;
    for (int open = 1; open > 0; ++length)
        open += std::strchr("({", signature[length])   ? 1
                : std::strchr(")}", signature[length]) ? -1
                                                       : 0;
    return length;
}

class RandomReply
{
public:
    explicit RandomReply(Below source) : below(std::move(source)) {}

    void send(sd_bus_message *call)
    {
        if (below(5) == 0) {
            check(sd_bus_reply_method_errorf(call, "tests.Error", "%s", text().c_str()),
                  "no error");
            return;
        }
        sd_bus_message *reply = nullptr;
        check(sd_bus_message_new_method_return(call, &reply), "no reply");
        static const char *const expected[] = {"",  "i",     "b",      "d",
                                               "s", "a{sv}", "aa{sv}", "a(sa{sv})"};
        append(reply, below(2) == 0 ? expected[below(int(std::size(expected)))] : type(0), 0);
        check(sd_bus_send(nullptr, reply, nullptr), "not sent");
        sd_bus_message_unref(reply);
    }

private:
    /// Control characters, and letters of one to four bytes.
    std::string text()
    {
        static const char *const letters[] = {"a",    "%s", "\"", "\n",        "\x1b[1m",
                                              "\x7f", "ä",  "€",  "\U0001f600"};
        std::string all;
        for (int length = below(20) == 0 ? below(30000) : below(10); length > 0; --length)
            all += letters[below(int(std::size(letters)))];
        return all;
    }

    std::string basicType() { return std::string(1, "ybnqiuxtdsog"[below(12)]); }

    /// A single complete type.
    std::string type(int depth)
    {
        switch (depth > 5 ? 5 : below(10)) {
        case 0:
            return 'a' + type(depth + 1);
        case 1:
            return "a{" + basicType() + type(depth + 1) + '}';
        case 2:
            return '(' + type(depth + 1) + type(depth + 1) + ')';
        case 3:
            return "v";
        case 4:
            // The bus cuts off who sends more than 16.
            return depth == 0 ? "h" : basicType();
        default:
            return basicType();
        }
    }

    void appendContainer(sd_bus_message *message, char kind, const std::string &contents, int count,
                         int depth)
    {
        check(sd_bus_message_open_container(message, kind, contents.c_str()), contents.c_str());
        for (; count > 0; --count)
            append(message, contents, depth + 1);
        check(sd_bus_message_close_container(message), "not closed");
    }

    void appendBasic(sd_bus_message *message, char kind)
    {
        static const std::string path = "/some/path";
        static const std::string signature = "a{sv}";
        const std::string string = text();
        const int descriptor = 0;
        const uint64_t number = below(3) == 0 ? UINT64_MAX : uint64_t(below(1000));
        const int boolean = below(2);
        const double fraction = below(5) == 0 ? NAN : below(1000) / 7.0;
        const void *const value = kind == 's'   ? static_cast<const void *>(string.c_str())
                                  : kind == 'o' ? path.c_str()
                                  : kind == 'g' ? signature.c_str()
                                  : kind == 'h' ? static_cast<const void *>(&descriptor)
                                  : kind == 'b' ? static_cast<const void *>(&boolean)
                                  : kind == 'd' ? static_cast<const void *>(&fraction)
                                                : static_cast<const void *>(&number);
        check(sd_bus_message_append_basic(message, kind, value), "not appended");
    }

    /// Values for all types of the signature.
    void append(sd_bus_message *message, const std::string &signature, int depth)
    {
        for (size_t at = 0; at < signature.size();) {
            const std::string first = signature.substr(at, typeLength(signature.c_str() + at));
            at += first.size();
            switch (first[0]) {
            case 'a':
                appendContainer(message, 'a', first.substr(1), below(4), depth);
                break;
            case '(':
                appendContainer(message, 'r', first.substr(1, first.size() - 2), 1, depth);
                break;
            case '{':
                appendContainer(message, 'e', first.substr(1, first.size() - 2), 1, depth);
                break;
            case 'v':
                appendContainer(message, 'v', depth > 8 ? basicType() : type(depth), 1, depth);
                break;
            default:
                appendBasic(message, first[0]);
            }
        }
    }

    Below below;
};

} // namespace

void sendRandomReply(sd_bus_message *call, Below below)
{
    RandomReply(std::move(below)).send(call);
}

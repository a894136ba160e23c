// SPDX-License-Identifier: MIT

// A configuration service written without Qt, so that nothing of what it does to its clients comes
// from the library that they use. Its argument says what it does with a call:
//
//   echo                 returns the text that the call has brought, or an empty one
//   error                returns an error that repeats that text
//   error-without-body   returns an error without any argument
//   silence              answers nothing
//   random               returns values of types that nobody expects, and errors of strange texts
//
// It prints a line when it owns the name. A number as a second argument says after how many
// milliseconds something happens to it, again and again; a third argument says what:
//
//   kill      it is killed and started again
//   stop      it is stopped, and goes on after as many milliseconds
//   replace   another takes the name from it, and then it ends
//   queue     another waits for the name, and it ends

#include <systemd/sd-bus.h>

#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <random>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

const char *const serviceName = "com.tavelornbraille.ConfigurationManager";

void check(int result, const char *what)
{
    if (result >= 0)
        return;
    std::fprintf(stderr, "%s: %s\n", what, std::strerror(-result));
    std::exit(EXIT_FAILURE);
}

namespace random {

// The same replies in each run.
std::mt19937 generator(1903); // NOLINT(cert-msc32-c,cert-msc51-cpp)

int below(int end)
{
    return std::uniform_int_distribution<int>(0, end - 1)(generator);
}

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

std::string basicType()
{
    return std::string(1, "ybnqiuxtdsog"[below(12)]);
}

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

void append(sd_bus_message *message, const std::string &signature, int depth);

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

int reply(sd_bus_message *call)
{
    if (below(5) == 0) {
        check(sd_bus_reply_method_errorf(call, "tests.Error", "%s", text().c_str()), "no error");
        return 1;
    }
    sd_bus_message *reply = nullptr;
    check(sd_bus_message_new_method_return(call, &reply), "no reply");
    // What operations return comes often, all else now and then.
    static const char *const expected[] = {"", "i", "b", "d", "s", "a{sv}", "aa{sv}", "a(sa{sv})"};
    append(reply, below(2) == 0 ? expected[below(int(std::size(expected)))] : type(0), 0);
    check(sd_bus_send(nullptr, reply, nullptr), "not sent");
    sd_bus_message_unref(reply);
    return 1;
}

} // namespace random

int answer(sd_bus_message *call, void *behaviour, sd_bus_error *)
{
    if (!sd_bus_message_is_method_call(call, serviceName, nullptr))
        return 0;
    const char *text = "";
    if (sd_bus_message_has_signature(call, "s") > 0)
        sd_bus_message_read(call, "s", &text);

    const char *const kind = static_cast<const char *>(behaviour);
    if (std::strcmp(kind, "echo") == 0)
        return sd_bus_reply_method_return(call, "s", text);
    if (std::strcmp(kind, "error") == 0)
        return sd_bus_reply_method_errorf(call, "tests.Error", "refused: %s", text);
    if (std::strcmp(kind, "random") == 0)
        return random::reply(call);
    if (std::strcmp(kind, "error-without-body") == 0) {
        const sd_bus_error error = {"tests.Error", nullptr, 0};
        return sd_bus_reply_method_error(call, &error);
    }
    return 1;
}

volatile sig_atomic_t mayEnd = false;

int serve(char *behaviour, uint64_t flags)
{
    sd_bus *bus = nullptr;
    check(sd_bus_open_system(&bus), "no bus");
    check(sd_bus_add_filter(bus, nullptr, answer, behaviour), "no filter");
    check(sd_bus_request_name(bus, serviceName, flags), "no name");
    std::puts("ready");
    std::fflush(stdout);
    while (!mayEnd) {
        const int processed = sd_bus_process(bus, nullptr);
        if (processed == 0)
            sd_bus_wait(bus, UINT64_MAX);
        else if (processed < 0)
            return EXIT_SUCCESS; // the bus has ended
    }
    // What has been taken is answered.
    sd_bus_flush_close_unref(bus);
    return EXIT_SUCCESS;
}

pid_t start(char *behaviour, uint64_t flags)
{
    const pid_t service = fork();
    if (service == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        struct sigaction end = {};
        end.sa_handler = [](int) { mayEnd = true; };
        sigaction(SIGTERM, &end, nullptr);
        std::exit(serve(behaviour, flags));
    }
    return service;
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc == 2)
        return serve(argv[1], 0);
    if (argc != 4)
        return EXIT_FAILURE;
    const auto time = static_cast<useconds_t>(std::strtoul(argv[2], nullptr, 10) * 1000);
    const char *const event = argv[3];
    const bool replaces = std::strcmp(event, "replace") == 0;
    const uint64_t flags = replaces ? SD_BUS_NAME_ALLOW_REPLACEMENT | SD_BUS_NAME_REPLACE_EXISTING
                           : std::strcmp(event, "queue") == 0 ? SD_BUS_NAME_QUEUE
                                                              : 0;
    pid_t service = start(argv[1], flags);
    for (;;) {
        usleep(time);
        if (std::strcmp(event, "stop") == 0) {
            kill(service, SIGSTOP);
            usleep(time);
            kill(service, SIGCONT);
            continue;
        }
        if (flags == 0) {
            kill(service, SIGKILL);
            waitpid(service, nullptr, 0);
            service = start(argv[1], flags);
            continue;
        }
        const pid_t next = start(argv[1], flags);
        usleep(time);
        kill(service, SIGTERM);
        waitpid(service, nullptr, 0);
        service = next;
    }
}

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

#include "RandomReply.h"

#include <systemd/sd-bus.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

const char *const serviceName = "com.tavelornbraille.ConfigurationManager";

// The same replies in each run.
std::mt19937 generator(1903); // NOLINT(cert-msc32-c,cert-msc51-cpp)

int randomBelow(int end)
{
    return std::uniform_int_distribution<int>(0, end - 1)(generator);
}

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
    if (std::strcmp(kind, "random") == 0) {
        sendRandomReply(call, randomBelow);
        return 1;
    }
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

// SPDX-License-Identifier: MIT

// A configuration service written without Qt, so that nothing of what it does to its clients comes
// from the library that they use. Its argument says what it does with a call:
//
//   echo                 returns the text that the call has brought, or an empty one
//   error                returns an error that repeats that text
//   error-without-body   returns an error without any argument
//   silence              answers nothing
//
// It prints a line when it owns the name. With a number as a second argument, it is killed and
// started again each time when so many milliseconds are over.

#include <systemd/sd-bus.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
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
    if (std::strcmp(kind, "error-without-body") == 0) {
        const sd_bus_error error = {"tests.Error", nullptr, 0};
        return sd_bus_reply_method_error(call, &error);
    }
    return 1;
}

int serve(char *behaviour)
{
    sd_bus *bus = nullptr;
    check(sd_bus_open_system(&bus), "no bus");
    check(sd_bus_add_filter(bus, nullptr, answer, behaviour), "no filter");
    check(sd_bus_request_name(bus, serviceName, 0), "no name");
    std::puts("ready");
    std::fflush(stdout);
    for (;;) {
        const int processed = sd_bus_process(bus, nullptr);
        if (processed == 0)
            sd_bus_wait(bus, UINT64_MAX);
        else if (processed < 0)
            return EXIT_SUCCESS; // the bus has ended
    }
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc == 2)
        return serve(argv[1]);
    if (argc != 3)
        return EXIT_FAILURE;
    for (;;) {
        const pid_t service = fork();
        if (service == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            return serve(argv[1]);
        }
        usleep(static_cast<useconds_t>(std::strtoul(argv[2], nullptr, 10) * 1000));
        kill(service, SIGKILL);
        waitpid(service, nullptr, 0);
    }
}

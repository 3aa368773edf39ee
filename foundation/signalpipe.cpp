#include "foundation/signalpipe.h"

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

int ends[2] = {-1, -1};

extern "C" void on_signal(int)
{
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = write(ends[1], &byte, 1);
}

}  // namespace

int signal_pipe_for_quit()
{
    if (ends[0] < 0 && pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0)
        return -1;
    struct sigaction action {};
    action.sa_handler = on_signal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
    return ends[0];
}

#pragma once
// A program that a benchmark runs beside itself: a simulator, or the logger it measures.

#include <QDeadlineTimer>

#include <csignal>
#include <string>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

// A simulator started with fork and exec rather than QProcess: QProcess watches each child with
// a pipe and a process descriptor in the event loop, and a hundred of those in this process's
// poll set would be counted as the connectors' cost. The simulator dies with this process,
// however this process ends.
class Child {
public:
    /// Standard error goes to `errors`, a file.
    Child(const std::string& exe, const std::vector<std::string>& args, const std::string& errors = "/dev/null")
    {
        int out[2];
        if (pipe2(out, O_CLOEXEC) != 0)
            return;
        std::vector<char*> argv{const_cast<char*>(exe.c_str())};
        for (const std::string& arg : args)
            argv.push_back(const_cast<char*>(arg.c_str()));
        argv.push_back(nullptr);
        const pid_t parent = getpid();
        _pid = fork();
        if (_pid == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            if (getppid() != parent)
                _exit(1);
            dup2(out[1], STDOUT_FILENO);
            // A simulator's "left" line for every client goes nowhere by default.
            const int error_file = open(errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
            dup2(error_file, STDERR_FILENO);
            execv(argv[0], argv.data());
            _exit(127);
        }
        close(out[1]);
        _out = out[0];
    }

    ~Child()
    {
        if (_pid > 0) {
            kill(_pid, SIGKILL);
            waitpid(_pid, nullptr, 0);
        }
        if (_out >= 0)
            close(_out);
    }

    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    /// Sends `signal` and waits for the end: the exit status (-1 if killed by a signal), and
    /// the CPU seconds the child used over its life.
    int Stop(int signal, double& cpu_seconds)
    {
        rusage usage{};
        int status = 0;
        kill(_pid, signal);
        wait4(_pid, &status, 0, &usage);
        _pid = -1;
        cpu_seconds = double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
                      double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    // Waits until the simulator prints "listening on ADDRESS:PORT"; false if it says anything
    // else, ends, or `deadline` passes first.
    bool WaitListening(const QDeadlineTimer& deadline)
    {
        std::string line;
        char c;
        while (_pid > 0 && line.find('\n') == std::string::npos) {
            pollfd wait{_out, POLLIN, 0};
            if (poll(&wait, 1, int(deadline.remainingTime())) <= 0 || read(_out, &c, 1) != 1)
                return false;
            line += c;
        }
        return line.rfind("listening on", 0) == 0;
    }

private:
    pid_t _pid = -1;
    int _out = -1;  // its standard output, kept open so that it never writes into a closed pipe
};


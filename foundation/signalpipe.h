#pragma once
// SIGINT and SIGTERM for a program with an event loop: the handler only writes a byte to a pipe
// (all that a handler may safely do), and the loop watches the pipe's other end. SIGPIPE is
// ignored, so that a peer gone mid-write is noticed by its socket, not by the end of the process.

/// Installs the handlers; the descriptor that becomes readable on either signal, or -1 (errno set).
int signal_pipe_for_quit();

#pragma once
// The commands of sondar-cli. Each prints its results on standard output and its failures on
// standard error, and answers the exit status.

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "cli/format.h"

class Session;

/// Exit statuses.
enum Exit { EXIT_OK = 0, EXIT_FAILED = 1, EXIT_USAGE = 2 };

/// Prints "sondar-cli: " and `text` on standard error; answers `status`.
int Complain(const std::string& text, int status);

int List(int ms, bool json);
int Get(Session& session, const std::vector<std::string>& paths, bool json);
int Set(Session& session, const std::vector<std::pair<std::string, std::string>>& values);
/// `count` 0 for no limit, `ms` negative for no time limit.
int Stream(Session& session, const std::vector<std::string>& records, RecordFormat format, long count, int ms);
int Save(Session& session, const std::string& file);
int Restore(Session& session, const std::string& file, bool dry_run);
int Capture(Session& session, int64_t bytes, const std::string& file);

#pragma once
// One raw capture of a fluorometer on its way to a file.

#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>

#include "foundation/zlib.h"

/// Writes a raw capture to a file as its lines arrive. The instrument deflates the capture and
/// sends it Base64-encoded line by line; each line is decoded straight into the inflater's input
/// buffer and what comes out goes to the file, so no more than the two buffers is ever held.
///
///     _RawDataCapture capture("raw.dat");
///     capture.HandleData(payload.data(), payload.data() + payload.size());  // per line
///     // destroying it flushes and closes the file
class _RawDataCapture : public ZLibInflatePolicy {
public:
    /// Switches the DATAFLRAW record on and starts a recording, in one message; the recording's
    /// `rawdatacapture` settings must have gone out before it.
    static constexpr const char* START_MESSAGE =
        "<arvex><halden><output><datarawcapture>true</datarawcapture></output><cmd><rawcapture>true"
        "</rawcapture></cmd></halden></arvex>\n";
    /// The Base64 text of one DATAFLRAW `line` as the connector hands it on: behind the record's
    /// name and one separator, up to the line feed. Empty for the line that ends the capture.
    static std::string_view Payload(const std::string& record, const std::string& line);

    /// Opens `filename` for writing, emptying it. A file that cannot be opened is not an error:
    /// the capture runs its course and its bytes fall away.
    explicit _RawDataCapture(const std::string& filename);

    /// Takes one line's payload of Base64 text, a whole number of groups: a group cut off at the
    /// end is dropped, and a padding or invalid character ends the line's data. Once the
    /// compressed stream has ended, further data is ignored. Throws std::runtime_error ("inflate()
    /// failed: ...") for data that does not inflate.
    void HandleData(const char* begin, const char* end);

    /// Decompressed bytes so far, whether or not the file took them.
    uint64_t BytesWritten() const { return _written; }

private:
    void _Write();

    std::ofstream _file;
    uint64_t _written = 0;
};

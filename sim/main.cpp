// sondar-sim: a simulated instrument.
//
//   sondar-sim --stdio --model tolvan|morvik|sarnel
//
// serves one document of the model, kept across lines: each line of standard input is one
// message, and each gives exactly one line of output, the compact reply (empty when there is
// none). A line feed inside a reply is written as the two characters \n.

#include <cstring>
#include <iostream>
#include <string>

#include "sim/served_document.h"

namespace {

int usage()
{
    std::cerr << "usage: sondar-sim --stdio --model tolvan|morvik|sarnel\n";
    return 2;
}

std::string one_line(const std::string& reply)
{
    std::string line;
    line.reserve(reply.size());
    for (char c : reply) {
        if (c == '\n')
            line += "\\n";
        else
            line += c;
    }
    return line;
}

}  // namespace

int main(int argc, char** argv)
{
    bool stdio = false;
    std::string model;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--stdio") == 0)
            stdio = true;
        else if (std::strcmp(argv[i], "--model") == 0 && i + 1 < argc)
            model = argv[++i];
        else
            return usage();
    }
    if (!stdio)
        return usage();
    auto document = ServedDocument::Make(model);
    if (!document) {
        std::cerr << "sondar-sim: unknown model \"" << model << "\"\n";
        return usage();
    }
    std::ios::sync_with_stdio(false);
    std::string line;
    while (std::getline(std::cin, line)) {
        std::string reply;
        try {
            reply = document->Serve(line);
        } catch (const std::exception& e) {
            // A value refused by exception must not end the instrument, nor cost the line.
            std::cerr << "sondar-sim: " << e.what() << '\n';
        }
        std::cout << one_line(reply) << '\n';
        std::cout.flush();
    }
    return 0;
}

// Any text as the description file beside the program: read, then turned into defines, services
// and buttons with their macros applied, as the main panel does.

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

#include "link/configdoc.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    ConfigDoc doc;
    std::istringstream in(std::string(reinterpret_cast<const char*>(data), size));
    std::ostringstream replies;
    doc.configure(in, replies);

    std::vector<std::string> services;
    doc.GetServices(services);
    Defines file_defines;
    doc.GetDefines(file_defines);
    // A define that brings in a macro may refer to itself, which never ends: files must not do
    // that, so the fuzzer leaves such values out.
    Defines defines;
    for (const auto& define : file_defines.Map())
        if (define.second.find('$') == std::string::npos)
            defines.Add(define.first, define.second);
    defines.Add("ip", "127.0.0.1");
    std::vector<std::shared_ptr<ButtonConfig>> buttons;
    doc.GetButtons(buttons);
    for (const auto& button : buttons)
        button->ApplyDefines(defines);
    std::ostringstream json;
    json << defines;
    return 0;
}

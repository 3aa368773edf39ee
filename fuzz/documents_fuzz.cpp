// Any message to any of the seven documents, as the link applies it: twice (the second time over
// what the first one changed), then a query of the changes. Configure must neither crash nor
// throw; the reply is whatever the document makes of it.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <sstream>
#include <string>

#include "libskarn/docbremmel.h"
#include "libskarn/docdravik.h"
#include "libskarn/dochalden.h"
#include "libskarn/docmorvik.h"
#include "libskarn/docostrel.h"
#include "libskarn/docquenta.h"
#include "libskarn/doctolvan.h"

namespace {

std::unique_ptr<Configurable> make(uint8_t model)
{
    switch (model % 7) {
    case 0: return std::make_unique<DocTolvan>();
    case 1: return std::make_unique<DocMorvik>();
    case 2: return std::make_unique<DocDravik>();
    case 3: return std::make_unique<DocQuenta>();
    case 4: return std::make_unique<DocHalden>();
    case 5: return std::make_unique<DocBremmel>();
    default: return std::make_unique<DocOstrel>();
    }
}

void serve(Configurable& doc, const std::string& message)
{
    std::istringstream in(message);
    std::ostringstream out;
    Configurable::set_compact(out, true);
    doc._set_changed(false);
    doc.configure(in, out);
}

}  // namespace

// The first byte picks the model, the rest is the message.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    const std::unique_ptr<Configurable> doc = make(data[0]);
    const std::string message(reinterpret_cast<const char*>(data + 1), size - 1);
    serve(*doc, message);
    serve(*doc, message);
    serve(*doc, "<arvex>&query_changes;</arvex>");
    return 0;
}

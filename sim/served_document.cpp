#include "sim/served_document.h"

#include <sstream>

#include "libskarn/docbremmel.h"
#include "libskarn/docdravik.h"
#include "libskarn/dochalden.h"
#include "libskarn/docmorvik.h"
#include "libskarn/docostrel.h"
#include "libskarn/docquenta.h"
#include "libskarn/doctolvan.h"

namespace {

template <class Doc>
class Served : public ServedDocument {
public:
    std::string Serve(const std::string& message) override
    {
        std::istringstream in(message);
        std::ostringstream out;
        Configurable::set_compact(out, true);
        _serve(in, out);
        return out.str();
    }

private:
    /// Every document but the Morvik's tells its listeners what a message changed.
    void _serve(std::istream& in, std::ostream& out) { _doc.configure_and_send_events(in, out); }
    Doc _doc;
};

// The Morvik has no events.
template <>
void Served<DocMorvik>::_serve(std::istream& in, std::ostream& out)
{
    _doc.configure(in, out);
}

}  // namespace

std::unique_ptr<ServedDocument> ServedDocument::Make(const std::string& model)
{
    if (model == "tolvan")
        return std::make_unique<Served<DocTolvan>>();
    if (model == "morvik" || model == "sarnel")
        return std::make_unique<Served<DocMorvik>>();
    if (model == "dravik")
        return std::make_unique<Served<DocDravik>>();
    if (model == "quenta")
        return std::make_unique<Served<DocQuenta>>();
    if (model == "halden")
        return std::make_unique<Served<DocHalden>>();
    if (model == "bremmel")
        return std::make_unique<Served<DocBremmel>>();
    if (model == "ostrel")
        return std::make_unique<Served<DocOstrel>>();
    return nullptr;
}

#include "sim/served_document.h"

#include <sstream>

#include "libskarn/docmorvik.h"
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
    void _serve(std::istream& in, std::ostream& out);
    Doc _doc;
};

// The Tolvan tells its listener what a message changed; the Morvik has no events.
template <>
void Served<DocTolvan>::_serve(std::istream& in, std::ostream& out)
{
    _doc.configure_and_send_events(in, out);
}

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
    return nullptr;
}

#pragma once
// The instrument's side of a document: one message in, one reply out.

#include <memory>
#include <string>

class ServedDocument {
public:
    virtual ~ServedDocument() = default;

    /// Serves one message as the instrument does and returns the compact reply ("" for none).
    virtual std::string Serve(const std::string& message) = 0;

    /// A fresh document of the model "tolvan", "morvik", "sarnel", "dravik", "quenta", "halden",
    /// "bremmel" or "ostrel"; null for an unknown model.
    static std::unique_ptr<ServedDocument> Make(const std::string& model);
};

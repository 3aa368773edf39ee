#pragma once
// The per-model part of a Connector: the document it mirrors, how the time of a record is read,
// and the messages that select the data records.

#include <memory>
#include <string>
#include <vector>

#include "libskarn/docmorvik.h"
#include "libskarn/doctolvan.h"

class ConnectorType {
public:
    /// The values of one record in the order of its header; cell 0 is the first field after the name.
    using Cells = std::vector<double*>;

    virtual ~ConnectorType() = default;

    /// The type for a type word, compared exactly; an unknown word gives a Tolvan.
    static std::unique_ptr<ConnectorType> Make(const std::string& type_word);

    /// The type word that messages and windows use for this model.
    virtual std::string TypeName() const = 0;
    /// The time of a data record.
    virtual double RecordTime(const std::string& record, const Cells& cells) = 0;
    /// The time of a test record.
    virtual double TestRecordTime(const std::string& record, const Cells& cells) = 0;
    virtual Configurable& Doc() = 0;
    virtual const Configurable& Doc() const = 0;
    /// The message, with its line feed, that selects the data records after connecting; may be empty.
    virtual std::string OutputSelection() const = 0;
    /// The message that turns clock-sync records on or off; empty for models without them.
    virtual std::string ClockSyncSelection(bool on) const;

protected:
    /// Cell i, or 0 when the record has fewer cells.
    static double Cell(const Cells& cells, size_t i) { return i < cells.size() ? *cells[i] : 0.0; }
};

/// A type that embeds its document.
template <class D>
class TypeWithDoc : public ConnectorType {
public:
    Configurable& Doc() override { return _doc; }
    const Configurable& Doc() const override { return _doc; }

private:
    D _doc;
};

/// Records carry seconds and nanoseconds in cells 1 and 2; test records are simply counted.
template <class D>
class TypeCountingTests : public TypeWithDoc<D> {
public:
    double RecordTime(const std::string&, const ConnectorType::Cells& cells) override
    {
        return ConnectorType::Cell(cells, 1) + ConnectorType::Cell(cells, 2) / 1e9;
    }
    double TestRecordTime(const std::string&, const ConnectorType::Cells&) override { return _test_count += 1.0; }

private:
    double _test_count = 0;
};

class TypeTolvan : public TypeCountingTests<DocTolvan> {
public:
    std::string TypeName() const override { return "tolvan"; }
    std::string OutputSelection() const override;
    std::string ClockSyncSelection(bool on) const override;
};

class TypeMorvik : public TypeCountingTests<DocMorvik> {
public:
    std::string TypeName() const override { return "morvik"; }
    std::string OutputSelection() const override { return ""; }
};

/// The Sarnel is a Morvik under another name.
class TypeSarnel : public TypeMorvik {
public:
    std::string TypeName() const override { return "sarnel"; }
};

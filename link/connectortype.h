#pragma once
// The per-model part of a Connector: the document it mirrors, how the time of a record is read,
// and the messages that select the data records.

#include <memory>
#include <string>
#include <vector>

#include "libskarn/docbremmel.h"
#include "libskarn/docdravik.h"
#include "libskarn/dochalden.h"
#include "libskarn/docmorvik.h"
#include "libskarn/docostrel.h"
#include "libskarn/docquenta.h"
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

/// Records and test records carry their time in cell 0.
template <class D>
class TypeTimeInFirstCell : public TypeWithDoc<D> {
public:
    double RecordTime(const std::string&, const ConnectorType::Cells& cells) override
    {
        return ConnectorType::Cell(cells, 0);
    }
    double TestRecordTime(const std::string&, const ConnectorType::Cells& cells) override
    {
        return ConnectorType::Cell(cells, 0);
    }
};

/// The Halden speaks as a Dravik.
class TypeHalden : public TypeTimeInFirstCell<DocHalden> {
public:
    std::string TypeName() const override { return "dravik"; }
    std::string OutputSelection() const override;
};

/// The Quenta speaks as a Dravik.
class TypeQuenta : public TypeTimeInFirstCell<DocQuenta> {
public:
    std::string TypeName() const override { return "dravik"; }
    std::string OutputSelection() const override;
};

class TypeOstrel : public TypeTimeInFirstCell<DocOstrel> {
public:
    std::string TypeName() const override { return "ostrel"; }
    std::string OutputSelection() const override { return "<arvex></arvex>\n"; }
};

/// Only DATA carries the time; other records are stamped with the last DATA's.
class TypeDravik : public TypeWithDoc<DocDravik> {
public:
    std::string TypeName() const override { return "dravik"; }
    double RecordTime(const std::string& record, const Cells& cells) override;
    double TestRecordTime(const std::string&, const Cells& cells) override { return Cell(cells, 0); }
    std::string OutputSelection() const override;

private:
    double _data_time = 0;
};

/// DATA has seconds and nanoseconds in cells 2 and 3, other records in cells 0 and 1.
class TypeBremmel : public TypeCountingTests<DocBremmel> {
public:
    std::string TypeName() const override { return "bremmel"; }
    double RecordTime(const std::string& record, const Cells& cells) override;
    std::string OutputSelection() const override;
};

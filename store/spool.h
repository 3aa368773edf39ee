#pragma once
// Batches that the database could not take, kept on disk in the order they came until it can.
// One file per batch in a directory of their own, written whole before it is given its name, so
// that a logger killed while writing leaves no torn batch; a logger started again finds what the
// last one left and delivers it first.

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "store/batch.h"

class Spool {
public:
    /// A file that cannot be written or read back.
    class Error : public std::runtime_error {
    public:
        using std::runtime_error::runtime_error;
    };

    /// Makes the directory if need be and takes up the batches already in it.
    explicit Spool(std::string directory);

    /// Keeps the batch behind the others; flushed to the disk on return.
    void Push(const Batch& batch);
    bool Empty() const { return _files.empty(); }
    size_t Batches() const { return _files.size(); }
    /// Records waiting, over all batches.
    uint64_t Rows() const { return _rows; }
    /// The oldest batch. A file that cannot be read is renamed to end in ".bad", taken out, and
    /// reported by Error.
    Batch Front();
    /// Forgets the oldest batch.
    void Pop();

private:
    struct File {
        uint64_t number;
        uint64_t rows;
    };
    std::string _Path(const File& file) const;

    std::string _directory;
    std::vector<File> _files;  // oldest first
    uint64_t _rows = 0;
};

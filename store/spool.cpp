#include "store/spool.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

const char MAGIC[] = "sondar-spool 1\n";

// Numbers little-endian as the machine has them: a spool stays on the machine that wrote it.
class Writer {
public:
    template <class T>
    void Put(T value) { out.append(reinterpret_cast<const char*>(&value), sizeof value); }
    void Put(const std::string& text)
    {
        Put(uint32_t(text.size()));
        out += text;
    }
    std::string out;
};

class Reader {
public:
    explicit Reader(const std::string& data) : _data(data) {}
    template <class T>
    T Get()
    {
        T value;
        _Need(sizeof value);
        std::memcpy(&value, _data.data() + _at, sizeof value);
        _at += sizeof value;
        return value;
    }
    std::string Text()
    {
        const uint32_t size = Get<uint32_t>();
        _Need(size);
        _at += size;
        return _data.substr(_at - size, size);
    }
    bool AtEnd() const { return _at == _data.size(); }

private:
    void _Need(size_t size) const
    {
        if (_data.size() - _at < size)
            throw Spool::Error("truncated");
    }
    const std::string& _data;
    size_t _at = 0;
};

std::string serialize(const Batch& batch)
{
    Writer w;
    w.out = MAGIC;
    w.Put(uint64_t(batch.instruments.size()));
    for (const InstrumentEntry& entry : batch.instruments) {
        w.Put(entry.name);
        w.Put(entry.model);
        w.Put(entry.address);
        w.Put(int32_t(entry.port));
    }
    w.Put(uint64_t(batch.rows.size()));
    const std::vector<std::string>* last = nullptr;
    for (const Row& row : batch.rows) {
        w.Put(row.instrument);
        w.Put(row.table);
        // Rows of one header follow each other: the columns are written once per run.
        w.Put(uint8_t(row.columns.get() != last));
        if (row.columns.get() != last) {
            w.Put(uint32_t(row.columns->size()));
            for (const std::string& column : *row.columns)
                w.Put(column);
            last = row.columns.get();
        }
        w.Put(row.received_us);
        w.Put(row.record_time);
        w.Put(uint32_t(row.values.size()));
        for (const std::string& value : row.values)
            w.Put(value);
    }
    w.Put(uint64_t(batch.events.size()));
    for (const Event& event : batch.events) {
        w.Put(event.instrument);
        w.Put(event.received_us);
        w.Put(event.kind);
        w.Put(event.text);
    }
    return w.out;
}

Batch deserialize(const std::string& data)
{
    if (data.compare(0, sizeof MAGIC - 1, MAGIC) != 0)
        throw Spool::Error("not a spool file");
    const std::string body = data.substr(sizeof MAGIC - 1);
    Reader r(body);
    Batch batch;
    for (uint64_t n = r.Get<uint64_t>(); n > 0; --n) {
        InstrumentEntry entry;
        entry.name = r.Text();
        entry.model = r.Text();
        entry.address = r.Text();
        entry.port = r.Get<int32_t>();
        batch.instruments.push_back(std::move(entry));
    }
    std::shared_ptr<const std::vector<std::string>> columns;
    for (uint64_t n = r.Get<uint64_t>(); n > 0; --n) {
        Row row;
        row.instrument = r.Text();
        row.table = r.Text();
        if (r.Get<uint8_t>()) {
            auto names = std::make_shared<std::vector<std::string>>(r.Get<uint32_t>());
            for (std::string& name : *names)
                name = r.Text();
            columns = names;
        }
        if (!columns)
            throw Spool::Error("a row without columns");
        row.columns = columns;
        row.received_us = r.Get<int64_t>();
        row.record_time = r.Get<double>();
        row.values.resize(r.Get<uint32_t>());
        for (std::string& value : row.values)
            value = r.Text();
        batch.rows.push_back(std::move(row));
    }
    for (uint64_t n = r.Get<uint64_t>(); n > 0; --n) {
        Event event;
        event.instrument = r.Text();
        event.received_us = r.Get<int64_t>();
        event.kind = r.Text();
        event.text = r.Text();
        batch.events.push_back(std::move(event));
    }
    if (!r.AtEnd())
        throw Spool::Error("trailing bytes");
    return batch;
}

}  // namespace

Spool::Spool(std::string directory) : _directory(std::move(directory))
{
    std::error_code error;
    std::filesystem::create_directories(_directory, error);
    if (error)
        throw Error("cannot make the spool directory " + _directory + ": " + error.message());
    // Names are "<number>.<rows>.batch".
    for (const auto& item : std::filesystem::directory_iterator(_directory)) {
        File file;
        char tail[8] = "";
        if (std::sscanf(item.path().filename().c_str(), "%" SCNu64 ".%" SCNu64 ".%7s", &file.number, &file.rows,
                        tail) == 3 &&
            std::string(tail) == "batch") {
            _files.push_back(file);
            _rows += file.rows;
        }
    }
    std::sort(_files.begin(), _files.end(), [](const File& a, const File& b) { return a.number < b.number; });
}

std::string Spool::_Path(const File& file) const
{
    return _directory + "/" + std::to_string(file.number) + "." + std::to_string(file.rows) + ".batch";
}

void Spool::Push(const Batch& batch)
{
    const File file{_files.empty() ? 1 : _files.back().number + 1, batch.rows.size()};
    const std::string path = _Path(file), temporary = path + ".new";
    const std::string data = serialize(batch);
    const int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    bool ok = fd >= 0;
    for (size_t at = 0; ok && at < data.size();) {
        const ssize_t written = ::write(fd, data.data() + at, data.size() - at);
        ok = written > 0;
        at += ok ? size_t(written) : 0;
    }
    ok = ok && ::fsync(fd) == 0;
    if (fd >= 0)
        ok = ::close(fd) == 0 && ok;
    if (!ok || std::rename(temporary.c_str(), path.c_str()) != 0) {
        const std::string reason = std::strerror(errno);
        std::remove(temporary.c_str());
        throw Error("cannot write " + path + ": " + reason);
    }
    _files.push_back(file);
    _rows += file.rows;
}

Batch Spool::Front()
{
    const File file = _files.front();
    const std::string path = _Path(file);
    std::ifstream in(path, std::ios::binary);
    const std::string data((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    try {
        if (!in && !in.eof())
            throw Error("cannot read");
        return deserialize(data);
    } catch (const Error& error) {
        std::rename(path.c_str(), (path + ".bad").c_str());
        Pop();
        throw Error(path + ": " + error.what() + "; kept as " + path + ".bad");
    }
}

void Spool::Pop()
{
    std::remove(_Path(_files.front()).c_str());
    _rows -= _files.front().rows;
    _files.erase(_files.begin());
}

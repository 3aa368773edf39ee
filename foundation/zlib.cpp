#include "foundation/zlib.h"

ZLibBasePolicy::ZLibBasePolicy()
    : _stream(new z_stream()), _in(new Bytef[BUFFER_SIZE]), _out(new Bytef[BUFFER_SIZE]) {
    ZLibBasePolicy::Reset();
}

ZLibBasePolicy::~ZLibBasePolicy() = default;

void ZLibBasePolicy::Reset() {
    *_stream = z_stream();
    _in_filled = _in.get();
    _out_emptied = _out_filled = _out.get();
    _stream->next_in = _in.get();
    _stream->avail_in = 0;
    _stream->next_out = _out.get();
    _stream->avail_out = BUFFER_SIZE;
    _ended = false;
}

void ZLibBasePolicy::InBufFilledTo(iterator to) {
    _in_filled = to;
    _stream->avail_in = static_cast<uInt>(to - _stream->next_in);
}

void ZLibBasePolicy::OutBufEmptiedTo(iterator to) {
    _out_emptied = to;
    if (_out_emptied == _out_filled) {
        _out_emptied = _out_filled = _out.get();
        _stream->next_out = _out.get();
        _stream->avail_out = BUFFER_SIZE;
    }
}

void ZLibBasePolicy::_Error(const std::string& message, int code) {
    throw std::runtime_error(message + ": " + zError(code));
}

void ZLibBasePolicy::_Advance() {
    _out_filled = _stream->next_out;
    if (_stream->avail_in == 0)
        _in_filled = _stream->next_in = _in.get();
}

ZLibDeflatePolicy::ZLibDeflatePolicy() { _Init(); }

ZLibDeflatePolicy::~ZLibDeflatePolicy() { deflateEnd(_stream.get()); }

void ZLibDeflatePolicy::_Init() {
    int code = deflateInit(_stream.get(), 1);
    if (code != Z_OK)
        _Error("deflateInit() failed", code);
}

void ZLibDeflatePolicy::Reset() {
    deflateEnd(_stream.get());
    ZLibBasePolicy::Reset();
    _Init();
}

void ZLibDeflatePolicy::_Deflate(bool finish) {
    if (Ended() || (!finish && _stream->avail_in == 0) || _stream->avail_out == 0)
        return;
    int code = deflate(_stream.get(), finish ? Z_FINISH : Z_NO_FLUSH);
    if (code == Z_STREAM_END && finish)
        _ended = true;
    else if (code != Z_OK)
        _Error("deflate() failed", code);
    _Advance();
}

ZLibInflatePolicy::ZLibInflatePolicy() { _Init(); }

ZLibInflatePolicy::~ZLibInflatePolicy() { inflateEnd(_stream.get()); }

void ZLibInflatePolicy::_Init() {
    int code = inflateInit(_stream.get());
    if (code != Z_OK)
        _Error("inflateInit() failed", code);
}

void ZLibInflatePolicy::Reset() {
    inflateEnd(_stream.get());
    ZLibBasePolicy::Reset();
    _Init();
}

void ZLibInflatePolicy::_Inflate() {
    if (Ended() || _stream->avail_in == 0 || _stream->avail_out == 0)
        return;
    int code = inflate(_stream.get(), Z_NO_FLUSH);
    if (code == Z_STREAM_END)
        _ended = true;
    else if (code != Z_OK)
        _Error("inflate() failed", code);
    _Advance();
}
